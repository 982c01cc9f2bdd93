// The heart of the effect: a plane is split into a Gaussian pyramid, the differences between its levels are raised, the
// small ones among them most, and the plane is put together again.
#pragma once

#include <opencv2/core.hpp>
#include <vector>

#include "clarity/detail_kernels.h"

namespace Lumvane {

inline constexpr float kDetailCoefficient = 22.222221f;  // 1 / (2 * sigma * sigma) for sigma = 0.15
inline constexpr float kDetailGain = 0.55f;

/// The planes of a pyramid, CV_32FC1, finest level first. Nothing in them counts for the next frame but their memory:
/// finding new memory for each frame takes longer than working on it.
struct ClarityPyramid {
  std::vector<cv::Mat> gaussian;  ///< what is left of the plane at half the size, a quarter, and so on
  std::vector<cv::Mat> coarse;    ///< what the next coarser level of `gaussian` tells of each level, at its size
  std::vector<cv::Mat> rebuilt;   ///< each level put together again from the coarser ones

  /// The finest level of `coarse` and `rebuilt` is made by bands of rows, where it is used. A pair of them for each
  /// stripe.
  struct Band {
    cv::Mat coarse, rebuilt;
  };
  std::vector<Band> bands;
};

/// The rows that belong to the stripes of a range: from first up to, not including, end.
struct StripeRows {
  int first;
  int end;

  StripeRows(const cv::Range& range, int rows, int stripes);
};

/// Levels of the pyramid for frames of this size: one more than the shorter side can be halved, from 1 to 8.
int clarityLevelCount(int width, int height);

/// A plane of half the size, (side + 1) / 2; a copy where a side cannot be halved any more.
void pyramidDown(const cv::Mat& input, cv::Mat& output);

/// A plane brought up to `size`, that of the finer level that it came from; a copy where it has that size.
void pyramidUp(const cv::Mat& input, cv::Size size, cv::Mat& output);

/// The rows from `first` up to, not including, `end` of what pyramidUp makes, and only these: in `buffer`, which grows
/// as it has to, or the rows of `input` itself.
cv::Mat pyramidUpRows(const cv::Mat& input, cv::Size size, int first, int end, cv::Mat& buffer);

/// Makes a pyramid of `levels` levels, at least one. pyramid.gaussian[0] shares the pixels of `value`, a CV_32FC1 plane,
/// and each further entry has half the size of the one before.
void buildClarityPyramid(const cv::Mat& value, int levels, ClarityPyramid& pyramid);

/// Puts the levels together again, coarsest first, and raises the details of all but the finest. That one is left to
/// the last pass over the frame.
void collapseClarityPyramid(ClarityPyramid& pyramid, DetailRow* detailRow);

}  // namespace Lumvane
