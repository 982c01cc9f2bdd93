// The vector forms of clarity's row kernels, held against the plain forms bit for bit.

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <opencv2/core.hpp>
#include <tuple>

#include "clarity/clarity_rows.h"
#include "tests/float_rows.h"
#include "tests/row_comparer.h"
#include "tests/targets.h"

namespace {

using namespace Lumvane;
using test::firstDifference;
using test::neighbours;

constexpr float kCoefficient = 22.222221f;
constexpr float kGain = 0.55f;

class ClarityRow : public test::EveryTarget {};
INSTANTIATE_TEST_SUITE_P(On, ClarityRow, test::everyTarget(), test::targetName);

TEST_P(ClarityRow, DecodesEveryColour) {
  const std::vector<uint8_t> pixels = test::everyColour([](uint32_t i) { return static_cast<uint8_t>(i * 7); });
  const size_t count = pixels.size() / 4;
  std::vector<float> expected[3], found[3];
  for (auto* planes : {expected, found})
    for (int i = 0; i < 3; ++i) planes[i].resize(count);
  for (const float factor : {0.85f, 1.15f}) {
    plain::analysisRow(pixels.data(), factor, expected[0].data(), expected[1].data(), expected[2].data(), count);
    analysisRow(pixels.data(), factor, found[0].data(), found[1].data(), found[2].data(), count);
    for (int i = 0; i < 3; ++i) ASSERT_EQ(firstDifference(expected[i], found[i]), "") << "plane " << i;
  }
  plain::valueRow(pixels.data(), found[0].data(), count);
  valueRow(pixels.data(), found[1].data(), count);
  EXPECT_EQ(firstDifference(expected[2], found[0]), "");
  EXPECT_EQ(firstDifference(expected[2], found[1]), "");
}

TEST_P(ClarityRow, RaisesDetails) {
  std::vector<float> fine, coarse;
  const auto add = [&](float a, float b) {
    fine.push_back(a);
    coarse.push_back(b);
  };
  for (int a = 0; a < 256; ++a) {
    for (int b = 0; b < 256; ++b) add(static_cast<float>(a) / 255.0f, static_cast<float>(b) / 255.0f);
  }
  // Differences of all sizes of both signs, down to those whose square is lost.
  for (float d = 1.0f; d > 1e-25f; d *= 0.99951f) {
    add(d, 0.0f);
    add(0.0f, d);
  }
  for (const float d : {0.0f, 1e-45f, 1e-38f, 1.0001f, 1.1f}) {
    add(d, 0.0f);
    add(-d, 0.0f);
  }
  // Arguments of the exponential around the places where its table goes from one step to the next.
  for (int step = 1; step <= 22 * 512; ++step) {
    for (const float d : neighbours(std::sqrt(static_cast<float>(step) / 512.0f / kCoefficient))) add(d, 0.0f);
  }
  for (const float offset : {0.0f, 0.7f}) {
    const std::vector<float> base(fine.size(), offset);
    std::vector<float> expected(fine.size()), found(fine.size());
    plain::detailRow(fine.data(), coarse.data(), kCoefficient, kGain, base.data(), expected.data(), fine.size());
    detailRow(fine.data(), coarse.data(), kCoefficient, kGain, base.data(), found.data(), fine.size());
    EXPECT_EQ(firstDifference(expected, found), "") << offset;
  }
}

// Every difference of samples from 0 to 1 whose weight is not 1, and beyond that as far as resampling may overshoot.
TEST_P(ClarityRow, RaisesEveryDifferenceAsThePlainFormDoes) {
  constexpr uint32_t kBlock = 1 << 16;
  std::vector<float> fine(kBlock), zeros(kBlock), expected(kBlock), found(kBlock);
  const auto first = std::bit_cast<uint32_t>(0x1p-15f), end = std::bit_cast<uint32_t>(1.01f);
  for (uint32_t bits = first; bits < end; bits += kBlock * test::kStep) {
    for (uint32_t i = 0; i < kBlock; ++i) fine[i] = std::bit_cast<float>(bits + i);
    plain::detailRow(fine.data(), zeros.data(), kCoefficient, kGain, zeros.data(), expected.data(), kBlock);
    detailRow(fine.data(), zeros.data(), kCoefficient, kGain, zeros.data(), found.data(), kBlock);
    ASSERT_EQ(firstDifference(expected, found), "") << fine[0];
  }
}

TEST_P(ClarityRow, BlendsInEveryProportion) {
  const std::vector<float> specials = {-1.0f, -1e-45f, 0.0f, 1e-45f, 1e-38f, 1e-7f, 0.25f, 0.99999994f, 1.0f, 1.5f};
  std::vector<float> value = test::randomFloats(5000, 1), enhanced = test::randomFloats(5000, 2);
  for (const float v : specials) {
    for (const float e : specials) {
      value.push_back(std::clamp(v, 0.0f, 1.0f));
      enhanced.push_back(e);
    }
  }
  std::vector<float> expected(value.size()), found(value.size());
  for (int percent = 1; percent <= 100; ++percent) {
    const float share = static_cast<float>(percent) * 0.01f;
    plain::blendRow(value.data(), 1.0f - share, enhanced.data(), share, expected.data(), value.size());
    blendRow(value.data(), 1.0f - share, enhanced.data(), share, found.data(), value.size());
    ASSERT_EQ(firstDifference(expected, found), "") << percent;
    // And as OpenCV does it.
    const cv::Mat limited = cv::min(cv::max(cv::Mat(enhanced), 0.0), 1.0);
    cv::Mat mixed;
    cv::addWeighted(cv::Mat(value), 1.0f - share, limited, share, 0.0, mixed, -1);
    ASSERT_EQ(firstDifference(cv::Mat(cv::min(cv::max(mixed, 0.0), 1.0)), found), "") << percent;
  }
}

TEST_P(ClarityRow, EncodesHuesAllAround) {
  std::vector<float> hues;
  for (float hue = 0.0f; hue < 360.0f; hue += 0.73f * test::kStep) hues.push_back(hue);
  for (int degrees = 0; degrees <= 360; degrees += 30) {
    for (const float hue : neighbours(static_cast<float>(degrees))) {
      if (hue >= 0.0f && hue <= 360.0f) hues.push_back(hue);
    }
  }
  std::vector<float> units = {1e-45f, 1e-20f, 1e-7f, 0.99999994f};
  for (int i = 0; i <= 17; ++i) {
    for (const float unit : neighbours(static_cast<float>(i) / 17.0f)) units.push_back(unit);
  }
  std::vector<float> hue, saturation, value;
  for (const float h : hues) {
    for (const float s : units) {
      for (const float v : units) {
        hue.push_back(h);
        saturation.push_back(std::clamp(s, 0.0f, 1.0f));
        value.push_back(std::clamp(v, 0.0f, 1.0f));
      }
    }
  }
  const std::vector<uint8_t> src = test::noise(4 * hue.size(), 5);
  std::vector<uint8_t> expected(src.size()), found(src.size());
  plain::synthesisRow(hue.data(), saturation.data(), value.data(), src.data(), expected.data(), hue.size());
  synthesisRow(hue.data(), saturation.data(), value.data(), src.data(), found.data(), hue.size());
  for (size_t i = 0; i < src.size(); ++i)
    ASSERT_EQ(expected[i], found[i]) << hue[i / 4] << " " << saturation[i / 4] << " " << value[i / 4] << " " << i % 4;
}

// All widths up to three of the widest vectors and a little, at starts off any vector's bounds, in place too.
TEST_P(ClarityRow, KeepsToItsRowInEveryWidth) {
  constexpr size_t kLongest = 3 * 16 + 3, kStarts = 3;
  const std::vector<float> random = test::randomFloats(4 * (kLongest + kStarts), 3);
  const std::vector<uint8_t> bytes = test::noise(4 * (kLongest + kStarts), 4);
  using Floats = std::array<std::vector<float>, 3>;  // with samples that must stay on both sides of the row
  struct Kernels {
    decltype(&analysisRow) analysis;
    decltype(&detailRow) detail;
    decltype(&blendRow) blend;
    decltype(&synthesisRow) synthesis;
  };
  const auto run = [&](const Kernels& kernels, size_t start, size_t width) {
    // Of exactly their size, so that the address sanitizer sees what is read beyond it.
    const std::vector<uint8_t> src(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(4 * width + start));
    const std::vector<float> fine(random.begin(), random.begin() + static_cast<ptrdiff_t>(width + start));
    const std::vector<float> coarse(random.end() - static_cast<ptrdiff_t>(width + start), random.end());
    Floats planes;
    for (auto& plane : planes) plane.assign(width + start + 32, -1.0f);
    float* const row[] = {&planes[0][start + 16], &planes[1][start + 16], &planes[2][start + 16]};
    kernels.analysis(src.data() + start, 1.1f, row[0], row[1], row[2], width);
    kernels.detail(row[2], coarse.data() + start, kCoefficient, kGain, fine.data() + start, row[2], width);
    kernels.blend(fine.data() + start, 0.25f, row[2], 0.75f, row[2], width);
    std::vector<uint8_t> dst(4 * width + start + 128, 0xA5), inPlace = dst;
    std::copy(src.begin() + static_cast<ptrdiff_t>(start), src.end(),
              inPlace.begin() + static_cast<ptrdiff_t>(start + 64));
    kernels.synthesis(row[0], row[1], row[2], src.data() + start, &dst[start + 64], width);
    kernels.synthesis(row[0], row[1], row[2], &inPlace[start + 64], &inPlace[start + 64], width);
    return std::tuple{planes, dst, inPlace};
  };
  for (size_t width = 0; width <= kLongest; ++width) {
    for (size_t start = 0; start < kStarts; ++start) {
      const auto expected =
          run({plain::analysisRow, plain::detailRow, plain::blendRow, plain::synthesisRow}, start, width);
      const auto found = run({analysisRow, detailRow, blendRow, synthesisRow}, start, width);
      ASSERT_TRUE(found == expected) << width << " from " << start;
      ASSERT_TRUE(std::get<1>(found) == std::get<2>(found)) << width << " in place";
    }
  }
}

}  // namespace
