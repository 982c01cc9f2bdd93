// Grading by bands of rows, on the calling thread or on several.
#pragma once

#include <opencv2/core.hpp>

#include "apply/lattice_view.h"

namespace Lumvane {

/// Grade every row of src, BGRA, into the row of dst at the same place: to BGRA pixels, faded against src with its weight
/// of 0 to 255, or to one byte a pixel. With a weight above 0 the frames must not overlap.
void gradeRows(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice, int32_t sourceWeight);
void gradeRowsToPlane(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice);

/// Grades the bands of a frame whose numbers it is given. Made for one run; owns nothing.
class parallelCubeLut : public cv::ParallelLoopBody {
 public:
  cv::Mat* dst;
  const cv::Mat* src;
  int32_t bands;
  int32_t latticeSize;
  const float* fraction;
  const int32_t* cell;
  const float* lattice;

  void operator()(const cv::Range& range) const override;
};

/// The same with a fade against the source in the same pass.
class parallelFadedCubeLut : public parallelCubeLut {
 public:
  int32_t sourceWeight;

  void operator()(const cv::Range& range) const override;
};

/// The same from BGRA to one byte a pixel.
class parallelAlphaCubeLut : public cv::ParallelLoopBody {
 public:
  cv::Mat* dst;
  const cv::Mat* src;
  int32_t bands;
  int32_t latticeSize;
  const float* fraction;
  const int32_t* cell;
  const float* lattice;

  void operator()(const cv::Range& range) const override;
};

}  // namespace Lumvane
