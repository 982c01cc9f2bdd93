#include <algorithm>

#include "base/parallel.h"
#include "clarity/nle_pure_c_clarity.h"

namespace Lumvane {
namespace {

constexpr int kMostStripes = 16;
constexpr float kPercent = 0.01f;
constexpr float kSaturationSpan = 0.15f;
constexpr int kChunk = 512;

// As many rows as keep the planes that are made for them in the cache of a core, and not so few that the rows made in
// vain on both sides of them count.
int rowsOfBand(int width) { return std::max(16, (1 << 16) / width); }

// The passes over the rows of a frame, for runParallel over stripe numbers. Each row is done once, however the numbers are
// dealt out.

// Decodes BGRA rows into a value plane.
struct clarityAnalysisPass {
  int rows;
  int stripes;
  const cv::Mat& src;
  cv::Mat& value;
  ValueRow* valueRow;

  void operator()(const cv::Range& range) const {
    const StripeRows band(range, rows, stripes);
    for (int y = band.first; y < band.end; ++y) {
      valueRow(src.ptr(y), value.ptr<float>(y), static_cast<size_t>(src.cols));
    }
  }
};

// Decodes BGRA rows into hue and saturation, which takes less than to keep planes of them, and encodes them again with
// the value plane, with the alpha of src. Before that it mixes into the value plane, in place, the pyramid's finest
// level with its raised differences; an amount of 0 leaves the plane as it is.
struct claritySynthesisPass {
  int rows;
  int stripes;
  cv::Mat& value;
  cv::Mat& dst;
  const cv::Mat& src;
  float saturationFactor;
  ClarityPyramid& pyramid;  // collapsed, with a band for each stripe
  float amount;
  const ClarityKernels& kernels;

  void operator()(const cv::Range& range) const {
    const StripeRows stripe(range, rows, stripes);
    const int step = rowsOfBand(dst.cols);
    for (int first = stripe.first; first < stripe.end; first += step) {
      const int end = std::min(first + step, stripe.end);
      if (amount > 0.0f) mixDetails(first, end, pyramid.bands[static_cast<size_t>(range.start)]);
      for (int y = first; y < end; ++y) encode(y);
    }
  }

 private:
  void mixDetails(int first, int end, ClarityPyramid::Band& band) const {
    const size_t next = std::min<size_t>(1, pyramid.gaussian.size() - 1);  // a single level is its own surroundings
    const cv::Mat coarse = pyramidUpRows(pyramid.gaussian[next], dst.size(), first, end, band.coarse);
    const cv::Mat rebuilt = pyramidUpRows(pyramid.rebuilt[next], dst.size(), first, end, band.rebuilt);
    for (int y = first; y < end; ++y) {
      for (int x = 0; x < dst.cols; x += kChunk) {
        const auto samples = static_cast<size_t>(std::min(kChunk, dst.cols - x));
        float* const plain = value.ptr<float>(y, x);
        alignas(64) float enhanced[kChunk];
        kernels.details.detail(plain, coarse.ptr<float>(y - first, x), kDetailCoefficient, kDetailGain,
                               rebuilt.ptr<float>(y - first, x), enhanced, samples);
        kernels.details.blend(plain, 1.0f - amount, enhanced, amount, plain, samples);
      }
    }
  }
  void encode(int y) const {
    for (int x = 0; x < dst.cols; x += kChunk) {
      const auto pixels = static_cast<size_t>(std::min(kChunk, dst.cols - x));
      alignas(64) float hue[kChunk], saturation[kChunk], valueBefore[kChunk];
      kernels.hsv.analysis(src.ptr(y, x), saturationFactor, hue, saturation, valueBefore, pixels);
      kernels.hsv.synthesis(hue, saturation, value.ptr<float>(y, x), src.ptr(y, x), dst.ptr(y, x), pixels);
    }
  }
};

}  // namespace

int clarityPipeline(NLEPureCClarity& effect, const cv::Mat& src, cv::Mat& dst, int saturation, int intensity,
                    const ClarityKernels& kernels) {
  if (src.empty() || dst.empty()) return 1;
  // Does nothing for a plane of the right size that has its pixels; one that an earlier failure left half-made has none.
  cv::Mat& value = effect.value;
  value.create(src.size(), CV_32FC1);
  const float saturationFactor =
      std::clamp(static_cast<float>(saturation), -100.0f, 100.0f) * kPercent * kSaturationSpan + 1.0f;
  const int threads = cv::getNumThreads();
  const int stripes = std::clamp(2 * threads, 1, kMostStripes);

  runParallel(stripes, clarityAnalysisPass{src.rows, stripes, src, value, kernels.hsv.value}, threads);

  const float amount = std::clamp(static_cast<float>(intensity), 0.0f, 100.0f) * kPercent;
  if (amount > 0.0f) {
    buildClarityPyramid(value, effect.levels, effect.pyramid);
    collapseClarityPyramid(effect.pyramid, kernels.details.detail);
    effect.pyramid.bands.resize(static_cast<size_t>(stripes));
  }
  runParallel(
      stripes,
      claritySynthesisPass{dst.rows, stripes, value, dst, src, saturationFactor, effect.pyramid, amount, kernels},
      threads);
  return 0;
}

}  // namespace Lumvane
