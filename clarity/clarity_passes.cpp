#include "clarity/clarity_passes.h"

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
    detailRow(fine.ptr<float>(y), up.ptr<float>(y), coefficient, gain, out.ptr<float>(y),
              static_cast<size_t>(fine.cols));
  }
}

void claritySynthesisPass::operator()(const cv::Range& range) const {
  const StripeRows band(range, rows, stripes);
  for (int y = band.first; y < band.end; ++y) {
    synthesisRow(planes[0].ptr<float>(y), planes[1].ptr<float>(y), planes[2].ptr<float>(y), src.ptr(y), dst.ptr(y),
                 static_cast<size_t>(dst.cols));
  }
}

}  // namespace Lumvane
