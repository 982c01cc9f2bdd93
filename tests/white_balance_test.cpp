#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <limits>
#include <opencv2/core.hpp>

#include "lumvane.h"
#include "tests/inputs.h"
#include "tests/row_comparer.h"
#include "tests/targets.h"
#include "whitebalance/white_balance_row.h"

namespace {

using test::Frame;

bool balance(Frame& dst, Frame& src, float temperature, float tint) {
  return WhiteBalanceFun(src.data(), dst.data(), 1.0f, NAN, -1.0f, temperature, tint, src.width, src.height);
}

TEST(WhiteBalance, TurnsPixelsIntoTheirKnownValues) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  struct Case {
    float temperature, tint;
    std::array<uint8_t, 4> pixel, expected;
  };
  for (const auto& c :
       {Case{0.0f, 0.0f, {1, 2, 255, 9}, {1, 2, 255, 9}}, Case{0.5f, 0.0f, {100, 100, 100, 7}, {50, 100, 150, 7}},
        Case{0.0f, 1.0f, {100, 100, 100, 0}, {150, 0, 150, 0}}, Case{0.5f, 0.0f, {3, 3, 3, 1}, {1, 3, 4, 1}},
        Case{2.0f, 2.0f, {9, 9, 255, 1}, {0, 0, 255, 1}}, Case{1e30f, 0.0f, {9, 9, 9, 1}, {0, 9, 255, 1}},
        Case{kInfinity, 0.0f, {9, 9, 0, 1}, {0, 9, 0, 1}}, Case{0.0f, NAN, {9, 9, 9, 1}, {0, 0, 0, 1}}}) {
    Frame src(1, 1), dst(1, 1);
    std::copy(c.pixel.begin(), c.pixel.end(), src.data());
    EXPECT_TRUE(balance(dst, src, c.temperature, c.tint));
    EXPECT_TRUE(std::equal(c.expected.begin(), c.expected.end(), dst.data())) << c.temperature << " " << c.tint;
  }
}

// The product of a byte and a gain is exact in double precision, so that it rounds once, to single precision.
TEST(WhiteBalance, MultipliesEveryByteAndTruncates) {
  Frame src(256, 1), dst(256, 1);
  for (int i = 0; i < 1024; ++i) src.data()[i] = static_cast<uint8_t>(i / 4);
  for (float temperature = -2.5f; temperature < 2.5f; temperature += 0.0371f) {
    for (float tint = -1.5f; tint < 1.5f; tint += 0.0713f) {
      balance(dst, src, temperature, tint);
      const float base = tint / 2.0f + 1.0f;
      const double gains[] = {base - temperature, 1.0f - tint, base + temperature, 1.0};
      for (int i = 0; i < 1024; ++i) {
        const double product = static_cast<float>(src.data()[i] * gains[i % 4]);
        const double expected = std::floor(std::fmin(std::fmax(product, 0.0), 255.0));
        ASSERT_EQ(dst.data()[i], expected) << temperature << " " << tint << " " << i;
      }
    }
  }
}

class WhiteBalanceRow : public test::EveryTarget {};
INSTANTIATE_TEST_SUITE_P(On, WhiteBalanceRow, test::everyTarget(), test::targetName);

TEST_P(WhiteBalanceRow, MatchesThePlainForm) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  std::vector<float> gains = {kInfinity, -kInfinity, NAN, 1e38f, -1e38f, 2.5e9f, 256.0f, 254.99998f, 1e-40f, -0.0f};
  for (float gain = -0.51f; gain < 3.1f; gain += 0.0137f) gains.push_back(gain);
  for (int i = 1; i < 256; ++i) gains.push_back(255.0f / static_cast<float>(i));
  std::vector<uint8_t> everyByte(1024);
  for (size_t i = 0; i < everyByte.size(); ++i) everyByte[i] = static_cast<uint8_t>(i / 4);
  for (size_t i = 0; i < gains.size(); ++i) {
    const Lumvane::WhiteBalanceGains three = {gains[i], gains[(i + 1) % gains.size()], gains[(i + 7) % gains.size()]};
    const auto bound = [&](auto kernel) {
      return [kernel, &three](const uint8_t* src, uint8_t* dst, size_t pixels) { kernel(three, src, dst, pixels); };
    };
    ASSERT_EQ(test::rowDifferences(bound(Lumvane::plain::whiteBalanceRow), bound(Lumvane::whiteBalanceRow), everyByte),
              "")
        << three.blue << " " << three.green << " " << three.red;
    if (i % 50 == 0) {
      EXPECT_EQ(
          test::rowDifferencesInEveryWidth(bound(Lumvane::plain::whiteBalanceRow), bound(Lumvane::whiteBalanceRow)),
          "");
    }
  }
}

// From 16 MiB on frames are written past the cache, in whole vectors at aligned places.
TEST_P(WhiteBalanceRow, MatchesThePlainFormInLargeFrames) {
  const Lumvane::WhiteBalanceGains gains = {0.7f, 1.05f, 1.3f};
  const auto bound = [&](auto kernel) {
    return [kernel, &gains](const uint8_t* src, uint8_t* dst, size_t pixels) { kernel(gains, src, dst, pixels); };
  };
  const std::vector<uint8_t> large = test::noise((size_t{16} << 20) + 148, 1);
  for (const size_t start : {0, 1, 4, 60}) {
    EXPECT_EQ(
        test::rowDifferences(bound(Lumvane::plain::whiteBalanceRow), bound(Lumvane::whiteBalanceRow), large, start), "")
        << start;
  }
}

TEST(WhiteBalance, LeavesEmptyFramesAloneAndThrowsOnNull) {
  Frame src(2, 2), dst(2, 2);
  src.fillWithNoise(1);
  const auto before = dst.bytes;
  for (const auto& [width, height] : {std::pair{0, 2}, {2, 0}, {-2, 2}, {2, -2}, {-2, -2}}) {
    EXPECT_TRUE(WhiteBalanceFun(src.data(), dst.data(), 0, 0, 0, 0.5f, 0.0f, width, height));
    EXPECT_TRUE(WhiteBalanceFun(nullptr, nullptr, 0, 0, 0, 0.5f, 0.0f, width, height));
  }
  EXPECT_THROW(WhiteBalanceFun(nullptr, dst.data(), 0, 0, 0, 0.5f, 0.0f, 2, 2), cv::Exception);
  EXPECT_THROW(WhiteBalanceFun(src.data(), nullptr, 0, 0, 0, 0.5f, 0.0f, 2, 2), cv::Exception);
  EXPECT_EQ(dst.bytes, before);
}

}  // namespace
