#include "clarity/clarity_passes.h"

#include <algorithm>

#include "clarity/clarity_rows.h"

namespace Lumvane {

StripeRows::StripeRows(const cv::Range& range, int rows, int stripes)
    : first(static_cast<int>(int64_t{range.start} * rows / stripes)),
      end(range.end >= stripes ? rows : static_cast<int>(int64_t{range.end} * rows / stripes)) {}

void clarityAnalysisPass::operator()(const cv::Range& range) const {
  const StripeRows band(range, rows, stripes);
  for (int y = band.first; y < band.end; ++y) {
    analysisRow(src.ptr(y), saturationFactor, planes[0].ptr<float>(y), planes[1].ptr<float>(y), planes[2].ptr<float>(y),
                static_cast<size_t>(src.cols));
  }
}

void clarityDetailPass::operator()(const cv::Range& range) const {
  const StripeRows band(range, rows, stripes);
  for (int y = band.first; y < band.end; ++y) {
    auto* const row = rebuilt.ptr<float>(y);
    detailRow(fine.ptr<float>(y), coarse.ptr<float>(y), coefficient, gain, row, row, static_cast<size_t>(fine.cols));
  }
}

void claritySynthesisPass::operator()(const cv::Range& range) const {
  const StripeRows band(range, rows, stripes);
  for (int y = band.first; y < band.end; ++y) {
    if (amount > 0.0f) enhance(y);
    synthesisRow(planes[0].ptr<float>(y), planes[1].ptr<float>(y), planes[2].ptr<float>(y), src.ptr(y), dst.ptr(y),
                 static_cast<size_t>(dst.cols));
  }
}

void claritySynthesisPass::enhance(int y) const {
  constexpr size_t kChunk = 1024;
  float enhanced[kChunk];
  const auto width = static_cast<size_t>(dst.cols);
  for (size_t x = 0; x < width; x += kChunk) {
    const size_t samples = std::min(kChunk, width - x);
    float* const value = planes[2].ptr<float>(y) + x;
    detailRow(value, pyramid.coarse[0].ptr<float>(y) + x, kDetailCoefficient, kDetailGain,
              pyramid.rebuilt[0].ptr<float>(y) + x, enhanced, samples);
    blendRow(value, 1.0f - amount, enhanced, amount, value, samples);
  }
}

}  // namespace Lumvane
