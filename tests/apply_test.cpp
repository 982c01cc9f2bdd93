#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

#include "apply/byte_conversions.h"
#include "lut/color_lut3d_adjust_effect.h"
#include "tests/inputs.h"
#include "tests/reference_grading.h"

namespace Lumvane {
namespace {

// The same random table in both forms: values beyond 0 to 255 on both sides, whole ones, and a few enormous or
// infinite ones.
struct Tables {
  ColorLut3dAdjustEffect effect{u"", 0, 0};
  reference::Lut reference;

  explicit Tables(int size) {
    std::mt19937 random(static_cast<unsigned>(size));
    effect.cubeLut = std::make_unique<CubeLut>();
    CubeLut& lut = *effect.cubeLut;
    lut.status = statusOk;
    lut.latticeSize = size;
    lut.fillInterpolationTables();
    reference.size = size;
    reference.points.resize(static_cast<size_t>(size * size * size * 3));
    for (int x = 0; x < size; ++x) {
      for (int y = 0; y < size; ++y) {
        for (int z = 0; z < size; ++z) {
          for (int c = 0; c < 3; ++c) {
            float value = static_cast<float>(random() % 40000) / 100.0f - 70.0f;
            if (random() % 16 == 0) value = std::floor(value);
            if (random() % 1024 == 0) value *= 1e8f;
            // Shows which points are read at weight 0: 0 * infinity is no number, and that becomes byte 0.
            if (random() % 2048 == 0) value = std::numeric_limits<float>::infinity();
            lut.lattice[x][y][z][c] = reference.at(x, y, z, c) = value;
          }
        }
      }
    }
  }

  std::string differences(test::Frame& src, test::Frame& dst, int strength) const {
    size_t count = 0;
    std::string first;
    for (int y = 0; y < src.height; ++y) {
      for (int x = 0; x < src.width; ++x) {
        const uint8_t* s = src.row(y) + 4 * x;
        const uint8_t* d = dst.row(y) + 4 * x;
        const auto expected = reference::gradePixel(reference, {s[0], s[1], s[2], s[3]}, strength);
        if (std::equal(expected.begin(), expected.end(), d)) continue;
        if (count++ == 0) first = "first at x " + std::to_string(x) + ", y " + std::to_string(y);
      }
    }
    return count == 0 ? "" : std::to_string(count) + " pixels differ, the " + first;
  }
};

class EveryColour : public testing::TestWithParam<std::pair<int, int>> {};  // points per axis, strength

// All 2^24 colours, so every tetrahedron and every tie between fractions; one pixel in four is translucent. With 57
// points the byte 255 lies a little above the last of them.
TEST_P(EveryColour, MatchesTheReference) {
  const auto [size, strength] = GetParam();
  Tables tables(size);
  constexpr int kHeight = 4096 / test::kStep;
  test::Frame src(4096, kHeight), dst(4096, kHeight);
  for (uint32_t n = 0; n < 4096 * kHeight; ++n) {
    uint8_t* pixel = src.data() + size_t{4} * n;
    const uint32_t i = n * test::kStep;
    for (int c = 0; c < 3; ++c) pixel[c] = static_cast<uint8_t>(i >> (8 * c));
    pixel[3] = i % 4 == 0 ? static_cast<uint8_t>(i / 4 * 31) : 255;
  }
  tables.effect.strengthPercent = strength;
  tables.effect.process(dst.data(), 4096, kHeight, 0, src.data(), 4096, kHeight, 0);
  EXPECT_EQ(tables.differences(src, dst, strength), "");
}

INSTANTIATE_TEST_SUITE_P(Slow, EveryColour,
                         testing::Values(std::pair(2, 50), std::pair(33, 100), std::pair(57, 1), std::pair(65, 99)));

// Around the number of pixels from which bands run on threads, and with fewer rows than bands.
TEST(Frames, MatchTheReferenceInEveryShape) {
  Tables tables(17);
  for (const auto& [width, height] :
       {std::pair{1, 1}, {3, 5}, {100, 100}, {100, 101}, {4000, 3}, {1300, 8}, {120, 87}}) {
    for (const int stride : {0, 4 * width + 12, -4 * width - 4}) {
      for (const int strength : {1, 50, 100}) {
        test::Frame src(width, height, stride), dst(width, height, stride == 0 ? 0 : -stride);
        src.fillWithNoise(static_cast<unsigned>(width));
        const auto before = src.bytes;
        tables.effect.strengthPercent = strength;
        tables.effect.process(dst.data(), width, height, dst.stride, src.data(), -1, 0, src.stride);
        const auto where = testing::Message() << width << " x " << height << ", stride " << stride << ", " << strength;
        EXPECT_EQ(tables.differences(src, dst, strength), "") << where;
        EXPECT_TRUE(dst.guardsIntact()) << where;
        EXPECT_EQ(src.bytes, before) << where;
      }
    }
  }
}

// The fade finds the graded pixel in source and destination alike.
TEST(Frames, GradedInPlaceComeOutAtFullStrength) {
  Tables tables(9);
  test::Frame src(150, 100), dst(150, 100);
  src.fillWithNoise(2);
  tables.effect.process(dst.data(), 150, 100, 0, src.data(), 150, 100, 0);
  tables.effect.strengthPercent = 30;
  tables.effect.process(src.data(), 150, 100, 0, src.data(), 150, 100, 0);
  EXPECT_EQ(src.bytes, dst.bytes);
}

// In alphaMode frames come out as one byte a pixel, red of what is looked up, whatever their own alpha is.
TEST(Frames, BecomePlanesInAlphaMode) {
  Tables tables(33);
  CubeLut& lut = *tables.effect.cubeLut;
  lut.alphaMode = true;
  for (const auto& [width, height] : {std::pair{7, 5}, {100, 101}, {1300, 9}}) {
    for (const int dstStride : {0, width + 3}) {
      test::Frame src(width, height, 4 * width + 8);
      src.fillWithNoise(6);
      const int step = dstStride == 0 ? width : dstStride;
      std::vector<uint8_t> plane(static_cast<size_t>(step * (height - 1) + width + 64), 0xA5), expected = plane;
      for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
          const uint8_t* s = src.row(y) + 4 * x;
          expected[static_cast<size_t>(y * step + x)] =
              reference::roundToByte(reference::lookup(tables.reference, s[2], s[1], s[0])[0]);
        }
      }
      EXPECT_EQ(lut.apply(plane.data(), dstStride, src.data(), width, height, src.stride), 0);
      EXPECT_EQ(plane, expected) << width << " x " << height << ", " << dstStride;
    }
  }
}

TEST(Frames, AreRefusedWithoutATable) {
  const auto onHeap = std::make_unique<CubeLut>();
  CubeLut& lut = *onHeap;
  test::Frame src(4, 4), dst(4, 4);
  src.fillWithNoise(3);
  for (const auto& [size, result] : {std::pair{0, 23}, {66, 23}, {-1, 23}, {1, 0}, {65, 0}}) {
    lut.latticeSize = size;
    lut.status = statusUnloaded;
    EXPECT_EQ(lut.apply(dst.data(), 0, src.data(), 4, 4, 0), result) << size;
    EXPECT_EQ(lut.status, statusOk) << size;
    if (result != 0) {
      EXPECT_EQ(dst.bytes, test::Frame(4, 4).bytes) << size;
    }
  }
}

// The values that 255 / (N - 1) puts just beside a lattice point.
TEST(InterpolationTables, PlaceBytesInTheirCells) {
  const auto onHeap = std::make_unique<CubeLut>();
  CubeLut& lut = *onHeap;
  lut.status = statusOk;
  for (lut.latticeSize = 2; lut.latticeSize <= 65; ++lut.latticeSize) {
    const int n = lut.latticeSize;
    lut.fillInterpolationTables();
    EXPECT_EQ(lut.cell[0], 0) << n;
    EXPECT_EQ(lut.cell[255], n - 1) << n;
    const bool above = n == 8 || n == 15 || n == 29 || n == 57 || n == 64;
    EXPECT_EQ(lut.fraction[255] > 0.0f, above) << n;
    EXPECT_LT(lut.fraction[255], 1e-5f) << n;
  }
  lut.latticeSize = 33;
  lut.fillInterpolationTables();
  EXPECT_EQ(lut.cell[8], 1);
  EXPECT_EQ(lut.fraction[8], 8.0f / (255.0f / 32.0f) - 1.0f);
  lut.latticeSize = 2;
  lut.fillInterpolationTables();
  EXPECT_EQ(lut.cell[254], 0);
  EXPECT_EQ(lut.fraction[254], 254.0f / 255.0f);
}

TEST(RoundToByte, GoesUpToTheNextEvenOrWholeNumber) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  const std::pair<float, int> cases[] = {
      {10.0f, 10},          {10.2f, 11},        {10.9f, 11},    {11.0f, 12},     {255.0f, 255}, {254.0f, 254},
      {300.0f, 255},        {-4.0f, 0},         {-0.2f, 0},     {0.0f, 0},       {1e-20f, 0},   {0.1f, 1},
      {2147483520.0f, 255}, {2147483648.0f, 0}, {kInfinity, 0}, {-kInfinity, 0}, {-3e9f, 0},    {std::nanf(""), 0}};
  for (const auto& [value, byte] : cases) {
    EXPECT_EQ(roundToByte(value), byte) << value;
  }
  for (float v = -2.0f; v < 258.0f; v += 1.0f / 1024.0f) ASSERT_EQ(roundToByte(v), reference::roundToByte(v)) << v;
}

}  // namespace
}  // namespace Lumvane
