#pragma once

#include <opencv2/core.hpp>

#include "apply/lattice_view.h"

namespace Lumvane {

/// Grades every row of src into the row of dst at the same place.
void gradeRows(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice);

/// Grades the bands of a frame whose numbers it is given. Made for one run of cv::parallel_for_; owns nothing.
class parallelCubeLut : public cv::ParallelLoopBody {
 public:
  parallelCubeLut(cv::Mat& dst, const cv::Mat& src, int32_t bands, const LatticeView& lattice);
  void operator()(const cv::Range& range) const override;

 private:
  cv::Mat* dst;
  const cv::Mat* src;
  int32_t bands;
  int32_t latticeSize;
  const float* fraction;
  const int32_t* cell;
  const float* lattice;
};

}  // namespace Lumvane
