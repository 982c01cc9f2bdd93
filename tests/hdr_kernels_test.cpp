// The kernels of the HDR LUT, on every target, against their plain forms.

#include "apply/hdr_kernels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "lut/interpolation_tables.h"
#include "tests/row_comparer.h"
#include "tests/targets.h"

namespace Lumvane {
namespace {

class HdrKernels : public test::EveryTarget {};
INSTANTIATE_TEST_SUITE_P(On, HdrKernels, test::everyTarget(), test::targetName);

std::vector<RGB8> noiseCache() {
  std::vector<RGB8> cache(kCacheEntries);
  const std::vector<uint8_t> bytes = test::noise(kCacheEntries * 3, 1);
  std::memcpy(cache.data(), bytes.data(), bytes.size());
  return cache;
}

TEST_P(HdrKernels, MapTheSameThroughACache) {
  static const std::vector<RGB8> cache = noiseCache();
  const auto plainRow = [](auto... all) { plain::hdrCacheRow(cache.data(), all...); };
  const auto vectorRow = [](auto... all) { hdrCacheRow(cache.data(), all...); };
  const auto alpha = [](uint32_t i) { return static_cast<uint8_t>(i * 7); };
  EXPECT_EQ(test::rowDifferences(plainRow, vectorRow, test::everyColour(alpha)), "");
  EXPECT_EQ(test::rowDifferencesInEveryWidth(plainRow, vectorRow), "");
}

// A lattice of N points per axis whose rows end with their last point, where the address sanitizer sees what is read
// beyond them.
class Lattice {
 public:
  template <class ValueOf>
  Lattice(int32_t size, const ValueOf& valueOf) : size_(size), rows_(kLatticeStride * kLatticeStride) {
    fillInterpolationTables(size, fraction_, cell_);
    for (int x = 0; x < kLatticeStride; ++x) {
      for (int y = 0; y < kLatticeStride; ++y) {
        std::vector<float>& row = rows_[static_cast<size_t>(x * kLatticeStride + y)];
        row.resize(kLatticeStride * 3);
        for (int i = 0; x < size && y < size && i < size * 3; ++i) row[static_cast<size_t>(i)] = valueOf();
        planes_[x][y] = row.data();
      }
      reds_[x] = planes_[x];
    }
  }
  Lattice(const Lattice&) = delete;
  Lattice& operator=(const Lattice&) = delete;
  HdrLatticeView view() { return {size_, fraction_, cell_, reds_}; }
  void makeTablesOf(int32_t size) { fillInterpolationTables(size, fraction_, cell_); }

 private:
  int32_t size_;
  float fraction_[256];
  int32_t cell_[256];
  std::vector<std::vector<float>> rows_;
  float* planes_[kLatticeStride][kLatticeStride];
  float** reds_[kLatticeStride];
};

// How the value of a lattice is drawn from a random number.
struct Kind {
  const char* name;
  std::vector<int32_t> sizes;
  float (*value)(uint32_t random);
};
float uniform(uint32_t random) { return static_cast<float>(random) / 4294967296.0f; }
constexpr float kInfinity = std::numeric_limits<float>::infinity();
const Kind kKinds[] = {
    {"colours", {65}, [](uint32_t random) { return uniform(random) * 255.0f; }},
    {"beyond both ends", {2, 17, 33, 65}, [](uint32_t random) { return uniform(random) * 900.0f - 400.0f; }},
    // Ties, and the values to both sides of them.
    {"halves",
     {52},  // every fifth byte lies on a point
     [](uint32_t random) {
       const float half = static_cast<float>(random % 1200) / 2.0f - 300.0f;
       return random / 1200 % 3 == 0 ? half : std::nextafter(half, random / 1200 % 3 == 1 ? kInfinity : -kInfinity);
     }},
    {"large", {33}, [](uint32_t random) { return (uniform(random) - 0.5f) * 2097153.0f; }},
    // One in many, so that rows with and without them lie side by side.
    {"huge, infinite, not a number",
     {2, 17, 33, 65},
     [](uint32_t random) {
       const float wild[] = {1e6f, -1e9f, -3e9f, 1e19f, -1e19f, 3e38f, kInfinity, -kInfinity, NAN, 1e-40f, -1e-40f};
       return random % 500 < 11 ? wild[random % 500] : uniform(random) * 300.0f - 20.0f;
     }},
};

void expectSameFill(const HdrLatticeView& lattice, const std::string& what) {
  std::vector<RGB8> expected(65536), found(65536);
  for (int r = 0; r < 256; r += test::kStep) {
    plain::hdrCacheFill(lattice, static_cast<uint8_t>(r), expected.data());
    hdrCacheFill(lattice, static_cast<uint8_t>(r), found.data());
    ASSERT_EQ(std::memcmp(expected.data(), found.data(), expected.size() * sizeof(RGB8)), 0) << what << ", red " << r;
  }
}

TEST_P(HdrKernels, FillTheSameCache) {
  for (const Kind& kind : kKinds) {
    for (const int32_t size : kind.sizes) {
      std::mt19937 random(static_cast<unsigned>(size));
      Lattice lattice(size, [&] { return kind.value(static_cast<uint32_t>(random())); });
      expectSameFill(lattice.view(), kind.name + (", points " + std::to_string(size)));
    }
  }
}

TEST_P(HdrKernels, FillTheSameCacheWithTheTablesOfAnotherSize) {
  std::mt19937 random(1);
  Lattice lattice(4, [&] { return static_cast<float>(random() % 255); });
  for (const int32_t size : {2, 5, 65}) {
    lattice.makeTablesOf(size);
    expectSameFill(lattice.view(), "tables of " + std::to_string(size));
  }
}

}  // namespace
}  // namespace Lumvane
