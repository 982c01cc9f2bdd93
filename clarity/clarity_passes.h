// The passes over the rows of a frame or of a pyramid level, for runParallel over stripe numbers. Each row is
// done once, however the numbers are dealt out.
#pragma once

#include <opencv2/core.hpp>

#include "clarity/clarity_pyramid.h"

namespace Lumvane {

/// The rows that belong to the stripes of a range: from first up to, not including, end.
struct StripeRows {
  int first;
  int end;

  StripeRows(const cv::Range& range, int rows, int stripes);
};

/// Decodes BGRA rows into a value plane.
struct clarityAnalysisPass {
  int rows;
  int stripes;
  const cv::Mat& src;
  cv::Mat& value;

  void operator()(const cv::Range& range) const;
};

/// Adds to a level the raised differences between it, as it was at first, and the next coarser one brought up to its
/// size.
struct clarityDetailPass {
  int rows;
  int stripes;
  const cv::Mat& fine;
  const cv::Mat& coarse;
  cv::Mat& rebuilt;
  float coefficient;
  float gain;

  void operator()(const cv::Range& range) const;
};

/// Decodes BGRA rows into hue and saturation, which takes less than to keep planes of them, and encodes them again with
/// the value plane, with the alpha of src. Before that it mixes into the value plane, in place, the pyramid's finest
/// level with its raised differences; an amount of 0 leaves the plane as it is.
struct claritySynthesisPass {
  int rows;
  int stripes;
  cv::Mat& value;
  cv::Mat& dst;
  const cv::Mat& src;
  float saturationFactor;
  ClarityPyramid& pyramid;  ///< collapsed, with a band for each stripe
  float amount;

  void operator()(const cv::Range& range) const;

 private:
  void mixDetails(int first, int end, ClarityPyramid::Band& band) const;
  void encode(int y) const;
};

}  // namespace Lumvane
