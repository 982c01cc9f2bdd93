#include "clarity/clarity_passes.h"

#include <algorithm>

#include "clarity/clarity_rows.h"

namespace Lumvane {
namespace {

constexpr int kChunk = 512;

}  // namespace

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
    for (int x = 0; x < dst.cols; x += kChunk) encode(y, x, static_cast<size_t>(std::min(kChunk, dst.cols - x)));
  }
}

void claritySynthesisPass::encode(int y, int x, size_t pixels) const {
  float* const value = planes[2].ptr<float>(y, x);
  if (amount > 0.0f) {
    float enhanced[kChunk];
    detailRow(value, pyramid.coarse[0].ptr<float>(y, x), kDetailCoefficient, kDetailGain,
              pyramid.rebuilt[0].ptr<float>(y, x), enhanced, pixels);
    blendRow(value, 1.0f - amount, enhanced, amount, value, pixels);
  }
  synthesisRow(planes[0].ptr<float>(y, x), planes[1].ptr<float>(y, x), value, src.ptr(y, x), dst.ptr(y, x), pixels);
}

}  // namespace Lumvane
