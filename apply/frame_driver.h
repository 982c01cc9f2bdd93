// Applies the row kernels of LUT grading to whole frames, in bands and on several threads.
#pragma once

#include <opencv2/core.hpp>

#include "apply/grade_kernels.h"

namespace Lumvane {

/// Returns a matrix header over the caller's pixels, BGRA or another 8-bit type; width and height are above 0. The
/// stride is in bytes and may be negative or shorter than a row; 0 means packed rows.
cv::Mat wrapFrame(uint8_t* pixels, int32_t width, int32_t height, int32_t strideBytes, int type = CV_8UC4);

/// True up to 10000 pixels. Small frames are graded on the calling thread, larger ones in 8 bands on OpenCV's threads,
/// with the same result.
bool isSmall(const cv::Mat& frame);

/// Grades src into dst, which has the same size, and blends the result with src, whose weight is 0 to 255.
///
/// The two may be the same pixels or overlap: the blend then reads src after grading has overwritten it.
void gradeFrame(cv::Mat& dst, const cv::Mat& src, const LatticeView& lut, const BlendTables& blends,
                int32_t sourceWeight);

/// Grades BGRA pixels to one byte per pixel: component 0 of the looked-up colour.
void gradeFrameToPlane(cv::Mat& dst, const cv::Mat& src, const LatticeView& lut);

}  // namespace Lumvane
