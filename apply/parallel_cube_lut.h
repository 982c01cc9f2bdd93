// Grading by bands of rows. The workers are made for one run and own nothing.
#pragma once

#include <opencv2/core.hpp>

#include "apply/grade_kernels.h"

namespace Lumvane {

/// Grades the bands of a BGRA frame whose numbers it is given. dst may be src, unless there is a fade.
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
  int32_t sourceWeight;  ///< 0 to 255: what the source keeps when the graded rows are faded against it
  const GradeKernels* kernels;

  void operator()(const cv::Range& range) const override;
};

/// The same from BGRA to one byte a pixel, without a fade.
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
