#include "clarity/clarity_passes.h"

#include <algorithm>

#include "clarity/clarity_rows.h"

namespace Lumvane {
namespace {

constexpr int kChunk = 512;

// As many rows as keep the planes that are made for them in the cache of a core, and not so few that the rows made in
// vain on both sides of them count.
int rowsOfBand(int width) { return std::max(16, (1 << 16) / width); }

}  // namespace

StripeRows::StripeRows(const cv::Range& range, int rows, int stripes)
    : first(static_cast<int>(int64_t{range.start} * rows / stripes)),
      end(range.end >= stripes ? rows : static_cast<int>(int64_t{range.end} * rows / stripes)) {}

void clarityAnalysisPass::operator()(const cv::Range& range) const {
  const StripeRows band(range, rows, stripes);
  for (int y = band.first; y < band.end; ++y) {
    valueRow(src.ptr(y), value.ptr<float>(y), static_cast<size_t>(src.cols));
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
  const StripeRows stripe(range, rows, stripes);
  const int step = rowsOfBand(dst.cols);
  for (int first = stripe.first; first < stripe.end; first += step) {
    const int end = std::min(first + step, stripe.end);
    if (amount > 0.0f) mixDetails(first, end, pyramid.bands[static_cast<size_t>(range.start)]);
    for (int y = first; y < end; ++y) encode(y);
  }
}

void claritySynthesisPass::mixDetails(int first, int end, ClarityPyramid::Band& band) const {
  const size_t next = std::min<size_t>(1, pyramid.gaussian.size() - 1);  // a single level is its own surroundings
  const cv::Mat coarse = pyramidUpRows(pyramid.gaussian[next], dst.size(), first, end, band.coarse);
  const cv::Mat rebuilt = pyramidUpRows(pyramid.rebuilt[next], dst.size(), first, end, band.rebuilt);
  for (int y = first; y < end; ++y) {
    for (int x = 0; x < dst.cols; x += kChunk) {
      const auto samples = static_cast<size_t>(std::min(kChunk, dst.cols - x));
      float* const plain = value.ptr<float>(y, x);
      float enhanced[kChunk];
      detailRow(plain, coarse.ptr<float>(y - first, x), kDetailCoefficient, kDetailGain,
                rebuilt.ptr<float>(y - first, x), enhanced, samples);
      blendRow(plain, 1.0f - amount, enhanced, amount, plain, samples);
    }
  }
}

void claritySynthesisPass::encode(int y) const {
  for (int x = 0; x < dst.cols; x += kChunk) {
    const auto pixels = static_cast<size_t>(std::min(kChunk, dst.cols - x));
    float hue[kChunk], saturation[kChunk], valueBefore[kChunk];
    analysisRow(src.ptr(y, x), saturationFactor, hue, saturation, valueBefore, pixels);
    synthesisRow(hue, saturation, value.ptr<float>(y, x), src.ptr(y, x), dst.ptr(y, x), pixels);
  }
}

}  // namespace Lumvane
