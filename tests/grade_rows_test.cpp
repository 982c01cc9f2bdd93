// The vector forms of the grading kernels against their plain forms, on every target.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

#include "apply/row_kernels.h"
#include "apply/step_reciprocal.h"
#include "lut/blend_table.h"
#include "lut/interpolation_tables.h"
#include "tests/row_comparer.h"
#include "tests/targets.h"

namespace Lumvane {
namespace {

class GradeRows : public test::EveryTarget {
 protected:
  std::shared_ptr<const Table> table = acquireTable();
  BlendTables blends = {table->multiply, table->mix};
};
INSTANTIATE_TEST_SUITE_P(On, GradeRows, test::everyTarget(), test::targetName);

// A lattice of random values beyond 0 to 255 on both sides: whole ones, tiny ones, enormous ones and infinities among
// them, which show each point that is read, whatever its weight. It ends where its memory ends.
class RandomLattice {
 public:
  explicit RandomLattice(int size) : points_(size_t{kLatticeStride} * kLatticeStride * kLatticeStride * 3 + 1) {
    fillInterpolationTables(size, fraction_, cell_);
    view = {size, fraction_, cell_, points_.data()};
    std::mt19937 random(static_cast<unsigned>(size));
    for (float& value : points_) {
      value = static_cast<float>(random() % 36000) / 100.0f - 50.0f;
      const unsigned kind = random() % 64;
      if (kind < 8) value = std::floor(value);
      if (kind == 8) value *= 1e-18f;
      if (kind == 9 && random() % 16 == 0) value *= 1e8f;
      if (kind == 10 && random() % 32 == 0) value = std::copysign(std::numeric_limits<float>::infinity(), value);
    }
  }
  LatticeView view;

 private:
  float fraction_[256];
  int32_t cell_[256];
  std::vector<float> points_;
};

// The vector forms multiply where the tables of a lattice divide.
TEST(StepReciprocal, MakesTheQuotientOfEveryByteForEverySize) {
  for (int size = 1; size <= kLatticeStride; ++size) {
    const float step = 255.0f / static_cast<float>(size - 1);
    const StepReciprocal reciprocal(size);
    for (int v = 0; v < 256; ++v) {
      const float byte = static_cast<float>(v);
      EXPECT_EQ(byte * reciprocal.high + byte * reciprocal.low, byte / step) << size << " " << v;
    }
  }
}

// All 2^24 colours and so every tetrahedron and every tie; one pixel in four is translucent.
TEST_P(GradeRows, GradeEveryColourAsThePlainForm) {
  const auto pixels =
      test::everyColour([](uint32_t i) { return i % 4 == 0 ? static_cast<uint8_t>(i / 4 * 31) : uint8_t{255}; });
  for (const int size : {1, 2, 17, 33, 57, 65}) {
    const auto lattice = std::make_unique<RandomLattice>(size);
    const auto bound = [&](auto kernel) {
      return [&, kernel](const uint8_t* s, uint8_t* d, size_t n) { kernel(lattice->view, blends, s, d, n); };
    };
    EXPECT_EQ(test::rowDifferences(bound(plain::gradeRow), bound(gradeRow), pixels), "") << size;
  }
}

TEST_P(GradeRows, GradeAndFadeEveryWidthAsThePlainForm) {
  const auto lattice = std::make_unique<RandomLattice>(33);
  const auto grade = [&](auto kernel) {
    return [&, kernel](const uint8_t* s, uint8_t* d, size_t n) { kernel(lattice->view, blends, s, d, n); };
  };
  EXPECT_EQ(test::rowDifferencesInEveryWidth(grade(plain::gradeRow), grade(gradeRow)), "");
  for (const int t : {1, 127, 254}) {
    // By way of a copy of the source, so that the comparer may ask for it in place.
    const auto gradeAndFade = [&](auto kernel) {
      return [&, kernel](const uint8_t* s, uint8_t* d, size_t n) {
        const std::vector<uint8_t> copy(s, s + 4 * n);
        kernel(lattice->view, blends, t, copy.data(), d, n);
      };
    };
    EXPECT_EQ(test::rowDifferencesInEveryWidth(gradeAndFade(plain::gradeAndFadeRow), gradeAndFade(gradeAndFadeRow)), "")
        << t;
  }
}

// All pairs of bytes at all 256 weights.
TEST_P(GradeRows, FadeEveryPairOfBytesAsThePlainForm) {
  std::vector<uint8_t> src(65536);
  for (size_t i = 0; i < src.size(); ++i) src[i] = static_cast<uint8_t>(i >> 8);
  for (int t = 0; t < 256; t += test::kStep) {
    const auto bound = [&](auto kernel) {
      return [&, kernel](const uint8_t* s, uint8_t* d, size_t n) {
        const std::vector<uint8_t> copy(s, s + 4 * n);
        for (size_t i = 0; i < 4 * n; ++i) d[i] = static_cast<uint8_t>(i);
        kernel(blends, t, copy.data(), d, n);
      };
    };
    ASSERT_EQ(test::rowDifferences(bound(plain::fadeRow), bound(fadeRow), src), "") << t;
  }
}

// A lattice of one colour gives each byte; all alphas meet it.
TEST_P(GradeRows, MultiplyEveryByteByEveryAlphaAsThePlainForm) {
  std::vector<uint8_t> src(256 * 4);
  for (size_t i = 0; i < src.size(); ++i) src[i] = static_cast<uint8_t>(i / 4);
  const auto lattice = std::make_unique<RandomLattice>(2);
  for (int byte = 0; byte < 256; byte += test::kStep) {
    std::vector<float> points(size_t{kLatticeStride} * kLatticeStride * kLatticeStride * 3 + 1,
                              static_cast<float>(byte) - 0.5f);
    lattice->view.lattice = points.data();
    const auto bound = [&](auto kernel) {
      return [&, kernel](const uint8_t* s, uint8_t* d, size_t n) { kernel(lattice->view, blends, s, d, n); };
    };
    ASSERT_EQ(test::rowDifferences(bound(plain::gradeRow), bound(gradeRow), src), "") << byte;
  }
}

}  // namespace
}  // namespace Lumvane
