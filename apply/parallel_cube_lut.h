// Grading by bands of rows, for cv::parallel_for_.
#pragma once

#include <opencv2/core.hpp>

#include "apply/band_rows.h"
#include "apply/default_float_mode.h"
#include "apply/lattice_view.h"

namespace Lumvane {

/// Grade every row of src, BGRA, into the row of dst at the same place: to BGRA pixels, faded against src with its weight
/// of 0 to 255, or to one byte a pixel. With a weight above 0 the frames must not overlap.
void gradeRows(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice, int32_t sourceWeight);
void gradeRowsToPlane(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice, int32_t sourceWeight);

using RowGrader = void (*)(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice, int32_t sourceWeight);

/// Takes the bands of a frame whose numbers it is given through `grade`. Made for one run; owns nothing.
template <RowGrader grade>
class BandWorker : public cv::ParallelLoopBody {
 public:
  BandWorker(cv::Mat& dstFrame, const cv::Mat& srcFrame, int32_t bandCount, const LatticeView& view, int32_t weight)
      : dst(&dstFrame),
        src(&srcFrame),
        bands(bandCount),
        latticeSize(view.latticeSize),
        fraction(view.fraction),
        cell(view.cell),
        lattice(view.lattice),
        sourceWeight(weight) {}

  void operator()(const cv::Range& range) const override {
    const DefaultFloatMode floatMode;
    for (int band = range.start; band < range.end; ++band) {
      const BandRows rows(dst->rows, bands, band);
      const cv::Rect area(0, rows.first, dst->cols, rows.count);
      cv::Mat dstBand(*dst, area);
      grade(dstBand, cv::Mat(*src, area), {latticeSize, fraction, cell, lattice}, sourceWeight);
    }
  }

 private:
  cv::Mat* dst;
  const cv::Mat* src;
  int32_t bands;
  int32_t latticeSize;
  const float* fraction;
  const int32_t* cell;
  const float* lattice;
  int32_t sourceWeight;
};

using parallelCubeLut = BandWorker<gradeRows>;
using parallelAlphaCubeLut = BandWorker<gradeRowsToPlane>;

}  // namespace Lumvane
