// Grading in bands of rows. A worker is used for one run and owns nothing.
#pragma once

#include <opencv2/core.hpp>

#include "apply/grade_kernels.h"

namespace Lumvane {

/// Grades the bands of a BGRA frame whose numbers are in the range. dst may be src only if sourceWeight is 0.
class parallelCubeLut : public cv::ParallelLoopBody {
 public:
  cv::Mat* dst;
  const cv::Mat* src;
  int32_t bands;
  int32_t latticeSize;
  const float* fraction;
  const int32_t* cell;
  const float* lattice;
  BlendTables blends;
  int32_t sourceWeight;  ///< 0 to 255: the weight of the source when the graded rows are blended with it
  const GradeKernels* kernels;

  void operator()(const cv::Range& range) const override;
};

/// The same, from BGRA to one byte per pixel and without blending.
class parallelAlphaCubeLut : public cv::ParallelLoopBody {
 public:
  cv::Mat* dst;
  const cv::Mat* src;
  int32_t bands;
  int32_t latticeSize;
  const float* fraction;
  const int32_t* cell;
  const float* lattice;
  const GradeKernels* kernels;

  void operator()(const cv::Range& range) const override;
};

}  // namespace Lumvane
