#include <gtest/gtest.h>

#include <cmath>
#include <opencv2/core.hpp>

#include "lumvane.h"
#include "tests/inputs.h"

namespace {

using test::Frame;

TEST(WhiteBalance, GivesKnownPixelValues) {
  struct Case {
    float temperature, tint;
    test::Bytes pixel, expected;
  };
  for (const auto& c :
       {Case{0.0f, 0.0f, {1, 2, 255, 9}, {1, 2, 255, 9}}, Case{0.5f, 0.0f, {100, 100, 100, 7}, {50, 100, 150, 7}},
        Case{0.0f, 1.0f, {100, 100, 100, 0}, {150, 0, 150, 0}}, Case{0.5f, 0.0f, {3, 3, 3, 1}, {1, 3, 4, 1}},
        Case{2.0f, 2.0f, {9, 9, 255, 1}, {0, 0, 255, 1}}, Case{1e30f, 0.0f, {9, 9, 9, 1}, {0, 9, 255, 1}},
        Case{INFINITY, 0.0f, {9, 9, 0, 1}, {0, 9, 0, 1}}, Case{0.0f, NAN, {9, 9, 9, 1}, {0, 0, 0, 1}}}) {
    test::Bytes dst(4);
    EXPECT_TRUE(WhiteBalanceFun(c.pixel.data(), dst.data(), 1.0f, NAN, -1.0f, c.temperature, c.tint, 1, 1));
    EXPECT_EQ(dst, c.expected) << c.temperature << " " << c.tint;
  }
}

TEST(WhiteBalance, IgnoresEmptyFramesAndThrowsOnNull) {
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
