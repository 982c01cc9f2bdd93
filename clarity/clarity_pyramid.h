// The heart of the effect: a plane is split into a Gaussian pyramid and the differences between its levels, the small
// ones among these are raised, and the plane is put together again.
#pragma once

#include <opencv2/core.hpp>
#include <vector>

namespace Lumvane {

/// Levels of the pyramid for frames of this size: one more than the shorter side can be halved, from 1 to 8.
int clarityLevelCount(int width, int height);

/// A plane of half the size, (side + 1) / 2; a copy where a side cannot be halved any more.
cv::Mat pyramidDown(const cv::Mat& input);

/// A plane brought up to `size`, that of the finer level that it came from; a copy where it has that size.
cv::Mat pyramidUp(const cv::Mat& input, cv::Size size);

/// Fills both lists with `levels` entries, at least one: gaussian[0] shares the pixels of `value`, a CV_32FC1 plane,
/// and each further entry is half the size. detail[i] holds the raised difference between gaussian[i] and what
/// gaussian[i + 1] tells of it; the last one is a copy of the coarsest level.
void buildClarityPyramid(const cv::Mat& value, int levels, std::vector<cv::Mat>& gaussian,
                         std::vector<cv::Mat>& detail);

/// The plane rebuilt from the details; `gaussian` gives the size of each level. The result can leave 0 to 1.
cv::Mat collapseClarityPyramid(const std::vector<cv::Mat>& gaussian, const std::vector<cv::Mat>& detail);

}  // namespace Lumvane
