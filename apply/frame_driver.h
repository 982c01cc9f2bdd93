// Frames: rows, bands and threads.
#pragma once

#include <opencv2/core.hpp>

#include "apply/lattice_view.h"

namespace Lumvane {

/// A header over the caller's pixels, BGRA or of another 8-bit type; width and height above 0. The stride is in bytes
/// and may be negative or shorter than a row; 0 means packed rows.
cv::Mat wrapFrame(uint8_t* pixels, int32_t width, int32_t height, int32_t strideBytes, int type = CV_8UC4);

/// Grades src into dst, which has the same size. Up to 10000 pixels are graded on the calling thread, more of them in 8
/// bands on OpenCV's threads; the bytes are the same. The two may be the same pixels.
void gradeFrame(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice);

/// The same, with the result faded against src, whose weight is 0 to 255.
///
/// The two may be the same pixels, or overlap: the fade then finds what the grading left in src.
void gradeAndFadeFrame(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice, int32_t sourceWeight);

/// The same from BGRA to one byte a pixel, without a fade: component 0 of the looked-up colour.
void gradeFrameToPlane(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice);

}  // namespace Lumvane
