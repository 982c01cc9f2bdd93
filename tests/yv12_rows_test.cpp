// The vector forms of the YV12 row conversions, on every target, against their plain forms.

#include <gtest/gtest.h>

#include <cstring>

#include "hdr/yv12_rows.h"
#include "tests/row_comparer.h"
#include "tests/targets.h"

namespace Lumvane {
namespace {

class Yv12Rows : public test::EveryTarget {};
INSTANTIATE_TEST_SUITE_P(On, Yv12Rows, test::everyTarget(), test::targetName);

constexpr ToRgb kToRgb[] = {toRgb(kBt2020, kLimited), toRgb(kBt2020, kFull)};
constexpr FromRgb kFromRgb[] = {fromRgb(kBt709, kLimited), fromRgb(kBt709, kFull)};

// A row of exactly its size on the heap, so that the address sanitizer sees a byte read beyond it, at an odd address.
class Row {
 public:
  explicit Row(size_t size) : bytes_(size + 1) {}
  Row(const std::vector<uint8_t>& bytes) : bytes_(bytes.size() + 1) {
    std::copy(bytes.begin(), bytes.end(), bytes_.begin() + 1);
  }
  uint8_t* data() { return bytes_.data() + 1; }

 private:
  std::vector<uint8_t> bytes_;
};

// What is written, with known bytes around it.
class Target {
 public:
  explicit Target(size_t size) : bytes_(size + 2 * kBorder, 0xA5) {}
  uint8_t* data() { return bytes_.data() + kBorder; }
  bool operator==(const Target&) const = default;

 private:
  static constexpr size_t kBorder = 129;
  std::vector<uint8_t> bytes_;
};

// Noise with many bytes at both ends, which is where sums are cut off.
std::vector<uint8_t> harshNoise(size_t bytes, unsigned seed) {
  std::vector<uint8_t> result = test::noise(bytes, seed);
  for (size_t i = 0; i < bytes; i += 1 + result[i] % 7) result[i] = result[i] % 2 == 0 ? 0 : 255;
  return result;
}

TEST_P(Yv12Rows, MakeTheSamePixelsOfEveryColour) {
  constexpr int kWidth = 512;
  std::vector<uint8_t> luma(kWidth);
  for (int x = 0; x < kWidth; ++x) luma[x] = static_cast<uint8_t>(x < 256 ? x : ~x);  // each at both parities
  for (const ToRgb& matrix : kToRgb) {
    Target expected(4 * kWidth), found(4 * kWidth);
    for (int chroma = 0; chroma < 1 << 16; chroma += test::kStep) {
      const std::vector<uint8_t> v(kWidth / 2, static_cast<uint8_t>(chroma >> 8)),
          u(kWidth / 2, static_cast<uint8_t>(chroma));
      const Yv12Row row = {luma.data(), v.data(), v.data(), u.data(), u.data()};
      plain::rowToRgb(matrix, row, expected.data(), kWidth);
      rowToRgb(matrix, row, found.data(), kWidth);
      ASSERT_TRUE(found == expected) << chroma;
    }
  }
}

TEST_P(Yv12Rows, MakeTheSamePixelsInEveryWidth) {
  for (int width = 1; width <= 3 * 64 + 3; ++width) {
    for (unsigned seed = 0; seed < 20; ++seed) {
      const auto columns = static_cast<size_t>((width + 1) / 2);
      Row luma(harshNoise(static_cast<size_t>(width), seed));
      Row nearV(harshNoise(columns, seed + 1)), farV(harshNoise(columns, seed + 2));
      Row nearU(harshNoise(columns, seed + 3)), farU(harshNoise(columns, seed + 4));
      const Yv12Row row = {luma.data(), nearV.data(), farV.data(), nearU.data(), farU.data()};
      Target expected(static_cast<size_t>(4 * width)), found = expected;
      plain::rowToRgb(kToRgb[seed % 2], row, expected.data(), width);
      rowToRgb(kToRgb[seed % 2], row, found.data(), width);
      ASSERT_TRUE(found == expected) << width << ", seed " << seed;
    }
  }
}

// Of every colour there is a chroma column with nothing else in reach.
TEST_P(Yv12Rows, MakeTheSamePlanesOfEveryColour) {
  constexpr int kColours = 4096, kWidth = 4 * kColours;
  Target expectedLuma[2] = {Target(kWidth), Target(kWidth)}, expectedV(kWidth / 2), expectedU(kWidth / 2);
  Target luma[2] = {Target(kWidth), Target(kWidth)}, v(kWidth / 2), u(kWidth / 2);
  std::vector<uint32_t> pixels(kWidth);
  for (uint32_t first = 0; first < 1u << 24; first += kColours * test::kStep) {
    for (uint32_t x = 0; x < kWidth; ++x) pixels[x] = (first + x / 4) | x << 24;
    const auto* bytes = reinterpret_cast<const uint8_t*>(pixels.data());
    const uint8_t* const rows[4] = {bytes, bytes, bytes, bytes};
    for (const FromRgb& matrix : kFromRgb) {
      plain::rowPairFromRgb(
          matrix, rows, {expectedLuma[0].data(), expectedLuma[1].data(), expectedV.data(), expectedU.data()}, kWidth);
      rowPairFromRgb(matrix, rows, {luma[0].data(), luma[1].data(), v.data(), u.data()}, kWidth);
      ASSERT_TRUE(luma[0] == expectedLuma[0] && luma[1] == expectedLuma[1]) << first;
      ASSERT_TRUE(v == expectedV && u == expectedU) << first;
    }
  }
}

TEST_P(Yv12Rows, MakeTheSamePlanesInEveryWidth) {
  for (int width = 1; width <= 3 * 16 + 3; ++width) {
    for (unsigned seed = 0; seed < 40; ++seed) {
      const auto columns = static_cast<size_t>((width + 1) / 2), pixels = static_cast<size_t>(width);
      Row rows[4] = {Row(harshNoise(4 * pixels, seed)), Row(harshNoise(4 * pixels, seed + 1)),
                     Row(harshNoise(4 * pixels, seed + 2)), Row(harshNoise(4 * pixels, seed + 3))};
      const uint8_t* const bgra[4] = {rows[0].data(), rows[1].data(), rows[2].data(), rows[3].data()};
      const auto planes = [&](auto convert) {
        std::vector<Target> result = {Target(pixels), Target(pixels), Target(columns), Target(columns)};
        convert(kFromRgb[seed % 2], bgra,
                Yv12RowPair{result[0].data(), result[1].data(), result[2].data(), result[3].data()}, width);
        return result;
      };
      const auto expected = planes([](auto&&... all) { plain::rowPairFromRgb(all...); });
      ASSERT_TRUE(planes([](auto&&... all) { rowPairFromRgb(all...); }) == expected) << width << ", seed " << seed;
    }
  }
}

}  // namespace
}  // namespace Lumvane
