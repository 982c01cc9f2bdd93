#include <algorithm>
#include <optional>

#include "base/band_rows.h"
#include "base/overlap.h"
#include "base/parallel.h"
#include "clarity/nle_pure_c_clarity.h"

namespace Lumvane {
namespace {

constexpr int kMaxStripes = 16;
constexpr float kPercent = 0.01f;
constexpr float kSaturationSpan = 0.15f;
constexpr int kChunk = 512;  // pixels of a row that go through all kernels before the next chunk

// Converts BGRA rows to hue, saturation and value, and back with the alpha of src. In between it blends the value with
// the rebuilt finest level of the pyramid, whose details are raised; an amount of 0 leaves the value unchanged. For
// runParallel over stripe numbers.
struct claritySynthesisPass {
  int rows;
  int stripes;
  cv::Mat& dst;
  const cv::Mat& src;
  float saturationFactor;
  ClarityPyramid& pyramid;  // collapsed
  float amount;
  const ClarityKernels& kernels;

  void operator()(const cv::Range& range) const {
    const BandRows band = stripeRows(range, rows, stripes);
    std::optional<PyramidUp> surroundings, rebuilt;
    if (amount > 0.0f && pyramid.gaussian.size() > 1) {
      const auto width = static_cast<size_t>(dst.cols);
      float* const room = scratchRows(pyramid.scratch[static_cast<size_t>(range.start)], 6 * width);
      surroundings.emplace(pyramid.gaussian[1], dst.size(), room, kernels.pyramid);
      rebuilt.emplace(pyramid.rebuiltLevel(1), dst.size(), room + 3 * width, kernels.pyramid);
    }
    for (int y = band.first; y < band.end; ++y) {
      if (surroundings) surroundings->moveTo(y), rebuilt->moveTo(y);
      for (int x = 0; x < dst.cols; x += kChunk) {
        const auto pixels = static_cast<size_t>(std::min(kChunk, dst.cols - x));
        alignas(64) float hue[kChunk], saturation[kChunk], value[kChunk];
        kernels.hsv.analysis(src.ptr(y, x), saturationFactor, hue, saturation, value, pixels);
        if (amount > 0.0f) {
          alignas(64) float coarse[kChunk], base[kChunk];
          // With a single level, the value serves as its own surroundings.
          const float* const around = surroundings ? surroundings->samples(x, pixels, coarse) : value;
          const float* const below = rebuilt ? rebuilt->samples(x, pixels, base) : value;
          kernels.details.detail(value, around, kDetailCoefficient, kDetailGain, below, base, pixels);
          kernels.details.blend(value, 1.0f - amount, base, amount, value, pixels);
        }
        kernels.hsv.synthesis(hue, saturation, value, src.ptr(y, x), dst.ptr(y, x), pixels);
      }
    }
  }
};

// True if dst overlaps src at other positions, so that writing could change pixels that are still to be read.
bool overwritesUnread(const cv::Mat& dst, const cv::Mat& src) {
  if (dst.data == src.data && dst.step[0] == src.step[0]) return false;
  return Extent(dst).overlaps(Extent(src));
}

}  // namespace

int clarityPipeline(NLEPureCClarity& effect, const cv::Mat& frame, cv::Mat& dst, int saturation, int intensity,
                    const ClarityKernels& kernels) {
  if (frame.empty() || dst.empty()) return 1;
  const cv::Mat src = overwritesUnread(dst, frame) ? frame.clone() : frame;
  const float saturationFactor =
      std::clamp(static_cast<float>(saturation), -100.0f, 100.0f) * kPercent * kSaturationSpan + 1.0f;
  auto& scratch = effect.pyramid.scratch;
  scratch.resize(static_cast<size_t>(2 * poolThreads()));
  const int stripes = std::min(static_cast<int>(scratch.size()), kMaxStripes);
  const float amount = std::clamp(static_cast<float>(intensity), 0.0f, 100.0f) * kPercent;
  if (amount > 0.0f) {
    buildClarityPyramid({src, kernels.hsv.value}, effect.levels, stripes, effect.pyramid, kernels.pyramid);
    collapseClarityPyramid(effect.pyramid, kernels.pyramid, kernels.details.detail);
  }
  runParallel(stripes,
              claritySynthesisPass{dst.rows, stripes, dst, src, saturationFactor, effect.pyramid, amount, kernels},
              stripes);
  return 0;
}

}  // namespace Lumvane
