#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <memory>
#include <opencv2/core/utility.hpp>

#include "clarity/clarity_passes.h"
#include "clarity/clarity_pyramid.h"
#include "clarity/clarity_rows.h"
#include "clarity/nle_pure_c_clarity.h"
#include "lumvane.h"
#include "tests/inputs.h"
#include "tests/reference_clarity.h"

namespace {

using test::Frame;

struct Clarity {
  void* handle;
  Clarity(int width, int height, int saturation, int intensity)
      : handle(CreateNLEPureCClarity(width, height, 77, saturation, intensity)) {}
  ~Clarity() { DestoryNLEPureCClarity(handle); }
  int process(Frame& dst, Frame& src) const {
    return NLEPureCClarityProcess(handle, dst.data(), src.width, src.height, dst.stride, src.data(), -1, 0, src.stride);
  }
};

std::vector<uint8_t> packed(Frame& frame) {
  std::vector<uint8_t> bytes;
  for (int y = 0; y < frame.height; ++y) bytes.insert(bytes.end(), frame.row(y), frame.row(y) + 4 * frame.width);
  return bytes;
}

// Smooth waves of colour with noise over a part of them, so that both strong and faint detail occurs.
void fillWithWaves(Frame& frame) {
  frame.fillWithNoise(7);
  for (int y = 0; y < frame.height; ++y) {
    for (int i = 0; i < 4 * frame.width; ++i) {
      const double wave = 120.0 + 100.0 * std::sin(0.05 * (i / 4) + i % 4) * std::cos(0.08 * y);
      uint8_t& byte = frame.row(y)[i];
      byte = static_cast<uint8_t>(y % 32 < 8 ? byte : wave + byte % 16);
    }
  }
}

TEST(Clarity, MatchesTheReference) {
  struct Case {
    int width, height, createWidth, createHeight, levels, saturation, intensity;
  };
  const Case cases[] = {
      {640, 363, 640, 363, 8, 20, 70},  {640, 363, 640, 363, 8, -60, 100}, {1, 1, 1, 1, 1, 50, 100},
      {1, 50, 1, 50, 1, 100, 100},      {1, 50, 1920, 1080, 8, 100, 100},  {50, 1, 1920, 1080, 8, 0, 100},
      {5, 5, 5, 5, 4, 100, 50},         {17, 33, 17, 33, 6, 100, 50},      {2, 9, 2, 9, 2, 10, 100},
      {64, 48, 0, 0, 1, 30, 100},       {64, 48, -5, 3, 1, 30, 100},       {3, 2, 1920, 1080, 8, -30, 100},
      {333, 65, 333, 65, 8, 100, 1},    {100, 70, 20, 20, 6, 1000, 1000},  {100, 70, 20, 20, 6, -1000, -5},
      {64, 64, 64, 64, 7, INT_MAX, 99}, {64, 64, 64, 64, 7, INT_MIN, 99},
  };
  for (const Case& c : cases) {
    const auto where = testing::Message() << c.width << " x " << c.height << ", levels " << c.levels << ", saturation "
                                          << c.saturation << ", intensity " << c.intensity;
    const Clarity clarity(c.createWidth, c.createHeight, c.saturation, c.intensity);
    EXPECT_EQ(static_cast<Lumvane::NLEPureCClarity*>(clarity.handle)->levels, c.createWidth == 0 ? 0 : c.levels)
        << where;
    for (const auto& [srcStride, dstStride] :
         {std::pair{0, 0}, {4 * c.width + 12, 0}, {-4, 4 * c.width + 5}, {4 * c.width, INT_MIN}}) {
      Frame src(c.width, c.height, std::max(srcStride, 0)), dst(c.width, c.height, std::max(dstStride, 0));
      fillWithWaves(src);
      const auto expected = reference::clarity(packed(src), c.width, c.height, c.levels, c.saturation, c.intensity);
      EXPECT_EQ(NLEPureCClarityProcess(clarity.handle, dst.data(), c.width, c.height, dstStride, src.data(), 0, -7,
                                       srcStride),
                1)
          << where;
      EXPECT_TRUE(packed(dst) == expected) << where;
      EXPECT_TRUE(dst.guardsIntact()) << where;
      EXPECT_EQ(clarity.process(src, src), 1) << where;
      EXPECT_TRUE(packed(src) == expected) << where << ", in place";
    }
  }
}

TEST(Clarity, RendersFramesOfChangingSizes) {
  const Clarity clarity(640, 360, 40, 80);
  for (const auto& [width, height] : {std::pair{64, 48}, {48, 64}, {48, 90}, {200, 100}, {1, 1}, {64, 48}}) {
    // As after a frame whose planes did not all find memory.
    auto* const effect = static_cast<Lumvane::NLEPureCClarity*>(clarity.handle);
    effect->value.release();
    if (!effect->pyramid.rebuilt.empty()) effect->pyramid.rebuilt[2].release();
    effect->pyramid.gaussian.resize(2);
    Frame src(width, height), dst(width, height);
    fillWithWaves(src);
    EXPECT_EQ(clarity.process(dst, src), 1);
    EXPECT_EQ(packed(dst), reference::clarity(packed(src), width, height, 8, 40, 80)) << width << " x " << height;
  }
}

// All 2^24 colours once, with alphas of every kind.
TEST(Clarity, GivesTheSourceBackAtZero) {
  const Clarity clarity(4096, 4096, 0, 0);
  Frame src(4096, 4096), dst(4096, 4096);
  for (uint32_t i = 0; i < 1u << 24; ++i) {
    for (int c = 0; c < 4; ++c) src.data()[size_t{4} * i + c] = static_cast<uint8_t>(c < 3 ? i >> (8 * c) : i * 7);
  }
  EXPECT_EQ(clarity.process(dst, src), 1);
  EXPECT_TRUE(dst.bytes == src.bytes);
}

TEST(Clarity, ReadsItsParametersFromTheStore) {
  const auto effect = std::make_unique<Lumvane::NLEPureCClarity>(nullptr);
  effect->levels = 5;
  Frame src(40, 30), dst(40, 30);
  fillWithWaves(src);
  const Lumvane::NLEFrameDesc srcDesc = {src.data(), 40, 30, 0}, dstDesc = {dst.data(), 40, 30, 0};
  EXPECT_EQ(effect->Process({}, srcDesc, dstDesc, 40, 30, 0), 0);
  EXPECT_EQ(packed(dst), reference::clarity(packed(src), 40, 30, 5, 100, 100)) << "what is missing counts as 100";
  effect->Init(40, 30, 0, -7, -1);
  Lumvane::NLEFilterValue value;
  EXPECT_TRUE(effect->GetParameter("saturation", value));
  EXPECT_EQ(value.number, 0xFFFFFFF9u) << "the high half is 0";
}

TEST(Clarity, TurnsUniformFramesIntoTheirKnownColours) {
  struct Case {
    int saturation;
    std::array<uint8_t, 4> pixel, expected;
  };
  std::vector<Case> cases = {{100, {64, 128, 192, 5}, {45, 118, 192, 5}},
                             {-100, {64, 128, 192, 5}, {83, 138, 192, 5}},
                             {-100, {0, 0, 255, 255}, {38, 38, 255, 255}},
                             {100, {0, 0, 255, 0}, {0, 0, 255, 0}}};
  for (int grey = 0; grey < 256; grey += 15) {
    const auto byte = static_cast<uint8_t>(grey);
    for (const int saturation : {-100, 0, 100})
      cases.push_back({saturation, {byte, byte, byte, 9}, {byte, byte, byte, 9}});
  }
  for (const Case& c : cases) {
    for (const int intensity : {0, 50, 100}) {
      Frame src(70, 66), dst(70, 66);
      for (int i = 0; i < 70 * 66; ++i) std::copy(c.pixel.begin(), c.pixel.end(), src.data() + 4 * i);
      Clarity(70, 66, c.saturation, intensity).process(dst, src);
      for (int i = 0; i < 70 * 66; ++i) {
        ASSERT_TRUE(std::equal(c.expected.begin(), c.expected.end(), dst.data() + 4 * i))
            << c.saturation << " " << intensity << " " << int{c.pixel[0]};
      }
    }
  }
}

TEST(Clarity, RejectsWhatIsNoFrameAndLeavesTheDestination) {
  const Clarity clarity(16, 16, 50, 50);
  Frame src(16, 16), dst(16, 16);
  fillWithWaves(src);
  const auto before = dst.bytes;
  uint8_t* const s = src.data();
  uint8_t* const d = dst.data();
  const auto process = [&](void* handle, uint8_t* to, int width, int height, int toStride, uint8_t* from,
                           int fromStride) {
    return NLEPureCClarityProcess(handle, to, width, height, toStride, from, 16, 16, fromStride);
  };
  EXPECT_EQ(process(nullptr, d, 16, 16, 0, s, 0), 0);
  EXPECT_EQ(process(clarity.handle, nullptr, 16, 16, 0, s, 0), 0);
  EXPECT_EQ(process(clarity.handle, d, 16, 16, 0, nullptr, 0), 0);
  for (const auto& [width, height] : {std::pair{0, 16}, {16, 0}, {-1, 16}, {16, -1}, {-3, -5}, {INT_MIN, INT_MIN}}) {
    EXPECT_EQ(process(clarity.handle, d, width, height, 0, s, 0), 0) << width << " x " << height;
  }
  EXPECT_EQ(process(clarity.handle, d, 16, 16, 63, s, 0), 0);
  EXPECT_EQ(process(clarity.handle, d, 16, 16, 0, s, 1), 0);
  EXPECT_EQ(dst.bytes, before);
  DestoryNLEPureCClarity(nullptr);
  EXPECT_EQ(clarity.process(dst, src), 1);
}

TEST(ClarityPyramid, HasALevelForEachHalvingOfTheShorterSide) {
  const std::pair<int, int> cases[] = {{INT_MIN, 1}, {0, 1},  {1, 1},  {2, 2},      {3, 3},  {4, 3},
                                       {5, 4},       {8, 4},  {9, 5},  {16, 5},     {17, 6}, {32, 6},
                                       {33, 7},      {64, 7}, {65, 8}, {INT_MAX, 8}};
  for (const auto& [side, levels] : cases) {
    EXPECT_EQ(Lumvane::clarityLevelCount(side, INT_MAX), levels) << side;
    EXPECT_EQ(Lumvane::clarityLevelCount(5000, side), levels) << side;
  }
}

// Every band of every height that a plane can be cut into.
TEST(ClarityPyramid, BringsUpBandsAsItDoesPlanes) {
  cv::Mat buffer;
  for (const auto& [width, height] : {std::pair{37, 1}, {5, 2}, {2, 3}, {64, 9}, {131, 22}, {131, 23}}) {
    cv::Mat fine(height, width, CV_32FC1), coarse, expected;
    cv::randu(fine, 0.0, 1.0);
    Lumvane::pyramidDown(fine, coarse);
    Lumvane::pyramidUp(coarse, fine.size(), expected);
    for (int first = 0; first < height; ++first) {
      for (int end = first + 1; end <= height; ++end) {
        const cv::Mat rows = Lumvane::pyramidUpRows(coarse, fine.size(), first, end, buffer);
        ASSERT_EQ(rows.size(), cv::Size(width, end - first));
        ASSERT_EQ(cv::countNonZero(rows != expected.rowRange(first, end)), 0) << height << " " << first << " " << end;
      }
    }
  }
}

// Bit for bit: what a frame's bytes hide as long as it is small.
TEST(ClarityRows, MatchTheReference) {
  std::vector<float> fine(65536), coarse(65536), base(65536, 0.0f), out(65536);
  for (int i = 0; i < 65536; ++i) {
    fine[i] = static_cast<float>(i % 256) / 255.0f;
    coarse[i] = static_cast<float>(i / 256) / 255.0f;
  }
  Lumvane::plain::detailRow(fine.data(), coarse.data(), 22.222221f, 0.55f, base.data(), out.data(), out.size());
  for (int i = 0; i < 65536; ++i)
    ASSERT_EQ(out[i], reference::raise(fine[i], coarse[i])) << fine[i] << " " << coarse[i];

  for (int blue = 0; blue < 256; blue += 5) {
    std::vector<uint8_t> pixels;
    for (int i = 0; i < 65536; ++i) {
      for (const int byte : {blue, i % 256, i / 256, 255}) pixels.push_back(static_cast<uint8_t>(byte));
    }
    std::vector<float> hue(65536), saturation(65536), value(65536);
    const float factor = reference::saturationFactor(63);
    Lumvane::plain::analysisRow(pixels.data(), factor, hue.data(), saturation.data(), value.data(), value.size());
    for (size_t i = 0; i < value.size(); ++i) {
      const auto expected = reference::decode(&pixels[4 * i], factor);
      ASSERT_TRUE(hue[i] == expected.h && saturation[i] == expected.s && value[i] == expected.v) << blue << " " << i;
    }
  }
}

TEST(StripeRows, CoverEachRowOnce) {
  for (const auto& [rows, stripes] : {std::pair{1, 16}, {16, 16}, {1083, 16}, {7, 2}, {200000000, 16}}) {
    int next = 0;
    for (int stripe = 0; stripe < stripes; ++stripe) {
      const Lumvane::StripeRows band(cv::Range(stripe, stripe + 1), rows, stripes);
      EXPECT_EQ(band.first, next) << rows << " " << stripe;
      next = band.end;
    }
    EXPECT_EQ(next, rows);
  }
}

}  // namespace
