// The comparer itself: faults that a kernel can have are planted, and it has to object.

#include "tests/row_comparer.h"

#include <gtest/gtest.h>

namespace test {
namespace {

void negative(const uint8_t* src, uint8_t* dst, size_t pixels) {
  for (size_t i = 0; i < 4 * pixels; ++i) dst[i] = i % 4 == 3 ? src[i] : static_cast<uint8_t>(255 - src[i]);
}

struct Fault {
  const char* name;
  RowKernel kernel;
};

TEST(RowComparer, ObjectsToEveryPlantedFault) {
  const Fault faults[] = {
      {"last pixel left out", [](const uint8_t* s, uint8_t* d, size_t n) { negative(s, d, n - (n > 17)); }},
      {"off by one at the tail",
       [](const uint8_t* s, uint8_t* d, size_t n) {
         negative(s, d, n);
         if (n % 4 != 0) ++d[4 * n - 3];
       }},
      {"one byte too far",
       [](const uint8_t* s, uint8_t* d, size_t n) {
         negative(s, d, n);
         d[4 * n] = 0;
       }},
      {"one byte ahead",
       [](const uint8_t* s, uint8_t* d, size_t n) {
         negative(s, d, n);
         d[-1] = 0;
       }},
      {"red and blue swapped",
       [](const uint8_t* s, uint8_t* d, size_t n) {
         negative(s, d, n);
         for (size_t i = 0; i < n; ++i) std::swap(d[4 * i], d[4 * i + 2]);
       }},
      {"alpha not copied",
       [](const uint8_t* s, uint8_t* d, size_t n) {
         negative(s, d, n);
         for (size_t i = 0; i < n; ++i) d[4 * i + 3] = 255;
       }},
      {"source read after the destination was written",
       [](const uint8_t* s, uint8_t* d, size_t n) {
         for (size_t i = 0; i < 4 * n; ++i) d[i] = i % 4 == 3 ? s[i] : 0;
         for (size_t i = 0; i < 4 * n; ++i) d[i] = i % 4 == 3 ? s[i] : static_cast<uint8_t>(255 - s[i]);
       }},
  };
  EXPECT_EQ(rowDifferencesInEveryWidth(negative, negative), "");
  for (const Fault& fault : faults) EXPECT_NE(rowDifferencesInEveryWidth(negative, fault.kernel), "") << fault.name;
}

TEST(RowComparer, CountsAndPlacesWhatDiffers) {
  const auto wrong = [](const uint8_t* s, uint8_t* d, size_t n) {
    negative(s, d, n);
    d[5] = 7;
    d[6] = 7;
  };
  EXPECT_EQ(rowDifferences(negative, wrong, std::vector<uint8_t>(12, 10)),
            "2 bytes of 3 pixels differ, the first at 5: 7 for 245");
}

}  // namespace
}  // namespace test
