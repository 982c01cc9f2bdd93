#include "clarity/clarity_pipeline.h"

#include <algorithm>

#include "base/parallel.h"
#include "clarity/clarity_passes.h"
#include "clarity/clarity_pyramid.h"
#include "clarity/nle_pure_c_clarity.h"

namespace Lumvane {
namespace {

constexpr int kMostStripes = 16;
constexpr float kPercent = 0.01f;
constexpr float kSaturationSpan = 0.15f;

}  // namespace

int clarityPipeline(NLEPureCClarity& effect, const cv::Mat& src, cv::Mat& dst, int saturation, int intensity) {
  if (src.empty() || dst.empty()) return 1;
  // Does nothing for a plane of the right size that has its pixels; one that an earlier failure left half-made has none.
  cv::Mat& value = effect.value;
  value.create(src.size(), CV_32FC1);
  const float saturationFactor =
      std::clamp(static_cast<float>(saturation), -100.0f, 100.0f) * kPercent * kSaturationSpan + 1.0f;
  const int threads = cv::getNumThreads();
  const int stripes = std::clamp(2 * threads, 1, kMostStripes);

  runParallel(stripes, clarityAnalysisPass{src.rows, stripes, src, value}, threads);

  const float amount = std::clamp(static_cast<float>(intensity), 0.0f, 100.0f) * kPercent;
  if (amount > 0.0f) {
    buildClarityPyramid(value, effect.levels, effect.pyramid);
    collapseClarityPyramid(effect.pyramid);
    effect.pyramid.bands.resize(static_cast<size_t>(stripes));
  }
  runParallel(stripes,
              claritySynthesisPass{dst.rows, stripes, value, dst, src, saturationFactor, effect.pyramid, amount},
              threads);
  return 0;
}

}  // namespace Lumvane
