// The result of a LUT for one colour, from its definition: cells and bytes.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <sstream>

#include "apply/lattice.h"
#include "apply/tetrahedral_lookup.h"
#include "lut/cube_lut.h"
#include "tests/inputs.h"

namespace Lumvane {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

// Includes sizes where 255 / (N - 1) is rounded so that byte 255 falls just above the last point. Vector forms multiply
// where the tables divide.
TEST(InterpolationTables, PlaceBytesInTheirCells) {
  const auto lut = std::make_unique<CubeLut>();
  lut->status = statusOk;
  for (int n = 2; n <= 65; ++n) {
    lut->latticeSize = n;
    lut->fillInterpolationTables();
    EXPECT_EQ(lut->cell[0], 0) << n;
    EXPECT_EQ(lut->cell[255], n - 1) << n;
    const bool above = n == 8 || n == 15 || n == 29 || n == 57 || n == 64;
    EXPECT_EQ(lut->fraction[255] > 0.0f, above) << n;
    EXPECT_LT(lut->fraction[255], 1e-5f) << n;
    const StepReciprocal reciprocal(n);
    for (int v = 0; v < 256; ++v) {
      const float byte = static_cast<float>(v), x = byte / (255.0f / static_cast<float>(n - 1));
      EXPECT_EQ(byte * reciprocal.high + byte * reciprocal.low, x) << n << " " << v;
      EXPECT_EQ(static_cast<float>(lut->cell[v]) + lut->fraction[v], x) << n << " " << v;
    }
  }
}

TEST(RoundToByte, RoundsUpAndOddIntegersByOne) {
  for (const auto& [value, byte] : std::initializer_list<std::pair<float, int>>{{10.0f, 10},
                                                                                {10.2f, 11},
                                                                                {10.9f, 11},
                                                                                {11.0f, 12},
                                                                                {255.0f, 255},
                                                                                {254.0f, 254},
                                                                                {300.0f, 255},
                                                                                {-4.0f, 0},
                                                                                {-0.2f, 0},
                                                                                {0.0f, 0},
                                                                                {1e-20f, 0},
                                                                                {0.1f, 1},
                                                                                {2147483520.0f, 255},
                                                                                {2147483648.0f, 0},
                                                                                {kInfinity, 0},
                                                                                {-kInfinity, 0},
                                                                                {-3e9f, 0},
                                                                                {NAN, 0}}) {
    EXPECT_EQ(roundToByte(value), byte) << value;
  }
}

TEST(TruncToByte, RoundsHalvesUpAndWrapsBelowZero) {
  for (const auto& [value, byte] : std::initializer_list<std::pair<float, int>>{{10.0f, 10},
                                                                                {10.4f, 10},
                                                                                {10.5f, 11},
                                                                                {11.0f, 11},
                                                                                {255.0f, 255},
                                                                                {300.0f, 255},
                                                                                {-0.2f, 0},
                                                                                {-1.4f, 0},
                                                                                {-1.5f, 255},
                                                                                {-2.5f, 254},
                                                                                {-257.5f, 255},
                                                                                {1e30f, 255},
                                                                                {-1e30f, 0},
                                                                                {NAN, 0},
                                                                                {kInfinity, 255},
                                                                                {-kInfinity, 0}}) {
    EXPECT_EQ(truncToByte(value), byte) << value;
  }
}

TEST(CubeLut, RefusesFramesWithoutATable) {
  const auto lut = std::make_unique<CubeLut>();
  for (const auto& [size, result] : {std::pair{0, 23}, {66, 23}, {-1, 23}, {1, 0}, {65, 0}}) {
    const test::Bytes src(64, 1);
    test::Bytes dst(64, 7);
    lut->latticeSize = size;
    lut->status = statusUnloaded;
    EXPECT_EQ(lut->apply(dst.data(), 0, src.data(), 4, 4, 0), result) << size;
    EXPECT_EQ(lut->status, statusOk) << size;
    EXPECT_EQ(dst == test::Bytes(64, 7), result != 0) << size;
  }
}

}  // namespace
}  // namespace Lumvane
