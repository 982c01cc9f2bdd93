#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <memory>
#include <opencv2/imgproc.hpp>

#include "clarity/clarity_pyramid.h"
#include "clarity/detail_kernels.h"
#include "clarity/nle_pure_c_clarity.h"
#include "lumvane.h"
#include "tests/inputs.h"
#include "tests/targets.h"

namespace {

using test::Bytes;
using test::Frame;

struct Clarity {
  void* handle;
  Clarity(int width, int height, int saturation, int intensity)
      : handle(CreateNLEPureCClarity(width, height, 77, saturation, intensity)) {}
  ~Clarity() { DestoryNLEPureCClarity(handle); }
  int process(Frame& dst, Frame& src) const {
    return NLEPureCClarityProcess(handle, dst.data(), src.width, src.height, dst.stride, src.data(), -1, 0, src.stride);
  }
  Lumvane::NLEPureCClarity& effect() const { return *static_cast<Lumvane::NLEPureCClarity*>(handle); }
};

Frame noiseFrame(int width, int height) {
  Frame frame(width, height);
  frame.fillWithNoise(7);
  return frame;
}

TEST(Clarity, DoesNotDependOnEarlierFrames) {
  const Clarity clarity(640, 360, 40, 80);
  for (const auto& [width, height] : {std::pair{64, 48}, {48, 64}, {48, 90}, {200, 100}, {1, 1}, {64, 48}}) {
    // The state after a frame whose planes were only partly allocated.
    if (!clarity.effect().pyramid.rebuilt.empty()) clarity.effect().pyramid.rebuilt[2].release();
    clarity.effect().pyramid.scratch.clear();
    clarity.effect().pyramid.gaussian.resize(2);
    Frame src = noiseFrame(width, height), dst(width, height), expected(width, height);
    EXPECT_EQ(clarity.process(dst, src), 1);
    EXPECT_EQ(Clarity(640, 360, 40, 80).process(expected, src), 1);
    EXPECT_EQ(dst.bytes, expected.bytes) << width << " x " << height;
  }
}

// Raises the number of threads with the first row of a frame, as another thread of the host might.
TEST(Clarity, ReadsTheNumberOfThreadsOncePerFrame) {
  const int before = cv::getNumThreads();
  Lumvane::HsvKernels raising = Lumvane::hsvKernels();
  raising.value = [](const uint8_t* src, float* value, size_t pixels) {
    cv::setNumThreads(8);
    Lumvane::hsvKernels().value(src, value, pixels);
  };
  const Clarity clarity(640, 360, 40, 80);
  Frame src = noiseFrame(640, 360), dst(640, 360), expected(640, 360);
  clarity.process(expected, src);
  const cv::Mat srcMat(360, 640, CV_8UC4, src.data());
  cv::Mat dstMat(360, 640, CV_8UC4, dst.data());
  cv::setNumThreads(1);
  EXPECT_EQ(Lumvane::clarityPipeline(clarity.effect(), srcMat, dstMat, 40, 80, {.hsv = raising}), 0);
  cv::setNumThreads(before);
  EXPECT_EQ(dst.bytes, expected.bytes);
}

TEST(Clarity, ReadsItsNamedParameters) {
  const auto effect = std::make_unique<Lumvane::NLEPureCClarity>(nullptr);
  effect->levels = 5;
  Frame src = noiseFrame(40, 30), dst(40, 30), expected(40, 30);
  EXPECT_EQ(effect->Process({}, {src.data(), 40, 30, 0}, {dst.data(), 40, 30, 0}, 40, 30, 0), 0);
  const Clarity full(40, 9, 100, 100);  // has five levels too
  EXPECT_EQ(full.effect().levels, 5);
  full.process(expected, src);
  EXPECT_EQ(dst.bytes, expected.bytes) << "a missing parameter means 100";
  effect->Init(40, 30, 0, -7, -1);
  Lumvane::NLEFilterValue value;
  EXPECT_TRUE(effect->GetParameter("saturation", value));
  EXPECT_EQ(value.number, 0xFFFFFFF9u) << "the high half is 0";
}

// For uniform frames the colours follow from the definition of hue, saturation and value.
TEST(Clarity, GivesKnownColoursForUniformFrames) {
  struct Case {
    int saturation;
    Bytes pixel, expected;
  };
  std::vector<Case> cases = {{100, {64, 128, 192, 5}, {45, 118, 192, 5}},
                             {-100, {64, 128, 192, 5}, {83, 138, 192, 5}},
                             {-100, {0, 0, 255, 255}, {38, 38, 255, 255}},
                             {INT_MIN, {0, 0, 255, 255}, {38, 38, 255, 255}},
                             {INT_MAX, {0, 0, 255, 0}, {0, 0, 255, 0}}};
  for (int grey = 0; grey < 256; grey += 15) {
    const auto byte = static_cast<uint8_t>(grey);
    for (const int saturation : {-100, 0, 100})
      cases.push_back({saturation, {byte, byte, byte, 9}, {byte, byte, byte, 9}});
  }
  for (const Case& c : cases) {
    for (const int intensity : {0, 50, 100}) {
      Frame src(70, 66), dst(70, 66);
      Bytes pixels, expected;
      for (int i = 0; i < 4 * 70 * 66; ++i) pixels.push_back(c.pixel[i % 4]), expected.push_back(c.expected[i % 4]);
      src.fill(pixels);
      Clarity(70, 66, c.saturation, intensity).process(dst, src);
      EXPECT_EQ(dst.packed(), expected) << c.saturation << " " << intensity << " " << int{c.pixel[0]};
    }
  }
}

TEST(Clarity, RejectsInvalidFramesAndKeepsTheDestination) {
  const Clarity clarity(16, 16, 50, 50);
  Frame src = noiseFrame(16, 16), dst(16, 16);
  const Bytes before = dst.bytes;
  uint8_t *const s = src.data(), *const d = dst.data();
  struct Case {
    void* handle;
    uint8_t* to;
    int width, height, toStride;
    uint8_t* from;
    int fromStride;
  };
  void* const handle = clarity.handle;
  for (const Case& c :
       {Case{nullptr, d, 16, 16, 0, s, 0}, Case{handle, nullptr, 16, 16, 0, s, 0},
        Case{handle, d, 16, 16, 0, nullptr, 0}, Case{handle, d, 0, 16, 0, s, 0}, Case{handle, d, 16, 0, 0, s, 0},
        Case{handle, d, -1, 16, 0, s, 0}, Case{handle, d, 16, -1, 0, s, 0}, Case{handle, d, -3, -5, 0, s, 0},
        Case{handle, d, INT_MIN, INT_MIN, 0, s, 0}, Case{handle, d, 16, 16, 63, s, 0},
        Case{handle, d, 16, 16, 0, s, 1}}) {
    EXPECT_EQ(NLEPureCClarityProcess(c.handle, c.to, c.width, c.height, c.toStride, c.from, 16, 16, c.fromStride), 0);
  }
  EXPECT_EQ(dst.bytes, before);
  // A negative stride means packed rows, as 0 does.
  Frame tall = noiseFrame(16, 31), packed(16, 31), negative(16, 31);
  NLEPureCClarityProcess(handle, packed.row(15), 16, 16, 0, tall.row(15), 0, 0, 0);
  NLEPureCClarityProcess(handle, negative.row(15), 16, 16, -72, tall.row(15), 0, 0, -72);
  EXPECT_EQ(negative.bytes, packed.bytes);
  DestoryNLEPureCClarity(nullptr);
  EXPECT_EQ(clarity.process(dst, src), 1);
}

// The result is that of the original source, however the two frames overlap.
TEST(Clarity, RendersTheOriginalSourceOfOverlappingFrames) {
  constexpr int kWidth = 300, kHeight = 200, kRow = 4 * kWidth;
  const Bytes src = noiseFrame(kWidth, kHeight).packed();
  struct Case {
    ptrdiff_t from, to;
    int fromStride, toStride;
  };
  for (const Case& c : {Case{0, 0, kRow, kRow},
                        {0, 0, kRow, kRow + 64},
                        {0, 0, kRow + 64, kRow},
                        {0, kRow, kRow, kRow},
                        {kRow, 0, kRow, kRow},
                        {0, 7 * kRow + 20, kRow, kRow},
                        {4, 0, kRow, kRow + 4}}) {
    Bytes expected(kRow * kHeight), found(kRow * kHeight);
    const Clarity clarity(kWidth, kHeight, 30, 90);
    NLEPureCClarityProcess(clarity.handle, expected.data(), kWidth, kHeight, 0, src.data(), 0, 0, 0);
    for (const int threads : {1, 2, 7}) {
      cv::setNumThreads(threads);
      Bytes buffer((kRow + 64) * (kHeight + 8));
      for (int y = 0; y < kHeight; ++y) {
        std::copy_n(src.data() + y * kRow, kRow, buffer.data() + c.from + y * c.fromStride);
      }
      NLEPureCClarityProcess(clarity.handle, buffer.data() + c.to, kWidth, kHeight, c.toStride, buffer.data() + c.from,
                             0, 0, c.fromStride);
      for (int y = 0; y < kHeight; ++y) {
        std::copy_n(buffer.data() + c.to + y * c.toStride, kRow, found.data() + y * kRow);
      }
      EXPECT_TRUE(found == expected) << c.from << " " << c.to << " " << c.toStride << ", threads " << threads;
    }
  }
  cv::setNumThreads(-1);
}

#ifdef __x86_64__
// On x86-64 OpenCV's builds do not fuse multiply and add: results are equal bit for bit.
class Pyramid : public test::EveryTarget {};
INSTANTIATE_TEST_SUITE_P(On, Pyramid, test::everyTarget(), test::targetName);

TEST_P(Pyramid, GivesTheFloatsOfOpenCv) {
  const auto compare = [](const cv::Size& size) {
    cv::Mat fine(size, CV_32FC1), down, coarse, up;
    cv::RNG(static_cast<uint64_t>(size.area())).fill(fine, cv::RNG::UNIFORM, 0.0, 1.0);
    Lumvane::ClarityPyramid::Scratch scratch(3);
    Lumvane::pyramidDown({fine}, down, 3, scratch, Lumvane::pyramidKernels());
    const bool halved = size.width > 1 && size.height > 1;
    if (halved) cv::pyrDown(fine, coarse, cv::Size(), cv::BORDER_REFLECT_101);
    const cv::Mat& expected = halved ? coarse : fine;
    ASSERT_EQ(down.size(), expected.size());
    ASSERT_EQ(std::memcmp(down.data, expected.data, 4 * down.total()), 0) << "down from " << size;
    if (!halved) return;
    cv::pyrUp(coarse, up, size, cv::BORDER_REFLECT_101);
    std::vector<float> rows(3 * static_cast<size_t>(size.width)), buffer(static_cast<size_t>(size.width));
    for (const int first : {0, size.height / 2}) {
      Lumvane::PyramidUp upsampled(coarse, size, rows.data(), Lumvane::pyramidKernels());
      for (int y = first; y < size.height; ++y) {
        upsampled.moveTo(y);
        const float* const found = upsampled.samples(0, buffer.size(), buffer.data());
        ASSERT_EQ(std::memcmp(found, up.ptr(y), 4 * buffer.size()), 0) << "up to " << size << ", row " << y;
      }
    }
  };
  for (int width = 1; width <= 64; ++width) {
    for (int height = 1; height <= 64; height += GetParam() == HWY_SCALAR ? 1 : test::kStep) compare({width, height});
  }
  for (const cv::Size& size : {cv::Size(1920, 1080), {1919, 31}, {515, 1079}, {2, 3000}, {3001, 2}, {133, 257}}) {
    compare(size);
  }
}
#endif

// No byte of a frame would reveal an extra level.
TEST(ClarityPyramid, HasALevelForEachHalvingOfTheShorterSide) {
  for (const auto& [side, levels] :
       {std::pair{INT_MIN, 1}, {1, 1}, {2, 2}, {3, 3}, {4, 3}, {64, 7}, {65, 8}, {INT_MAX, 8}}) {
    EXPECT_EQ(Lumvane::clarityLevelCount(side, INT_MAX), levels) << side;
    EXPECT_EQ(Lumvane::clarityLevelCount(5000, side), levels) << side;
  }
}

// The weight is the correctly rounded exponential, which C libraries do not guarantee. Small errors would not change the
// bytes of a frame.
TEST(ClarityRows, WeighDetailsByTheCorrectlyRoundedExponential) {
  std::vector<float> fine(1 << 20), zeros(fine.size()), out(fine.size());
  for (size_t i = 0; i < fine.size(); ++i) fine[i] = static_cast<float>(i) * 0x1p-20f;
  Lumvane::plainDetailKernels.detail(fine.data(), zeros.data(), 22.222221f, 0.55f, zeros.data(), out.data(),
                                     out.size());
  for (size_t i = 0; i < fine.size(); ++i) {
    const float d = fine[i], squared = d * d, exponent = squared * 22.222221f;
    const auto weight = static_cast<float>(std::exp(-static_cast<long double>(exponent)));
    const float gained = d * 0.55f, raised = gained * weight;
    ASSERT_EQ(out[i], raised + d) << d;
  }
}

}  // namespace
