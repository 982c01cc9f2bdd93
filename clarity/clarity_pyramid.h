// The core of the effect: a plane is split into a Gaussian pyramid, the differences between its levels are raised,
// small ones most, and the plane is rebuilt.
//
// Level 0, of the frame's size, is never stored: its rows are computed where they are used. The same applies to coarser
// levels upsampled to the size of the next finer one.
#pragma once

#include <opencv2/core.hpp>
#include <vector>

#include "clarity/detail_kernels.h"
#include "clarity/hsv_kernels.h"
#include "clarity/pyramid_kernels.h"

namespace Lumvane {

inline constexpr float kDetailCoefficient = 22.222221f;  // 1 / (2 * sigma * sigma) for sigma = 0.15
inline constexpr float kDetailGain = 0.55f;

/// The planes of a pyramid, CV_32FC1, by level. Only their memory is kept from frame to frame: allocating it for each
/// frame takes longer than processing.
struct ClarityPyramid {
  std::vector<cv::Mat> gaussian;  ///< the plane at half the size, a quarter, and so on; 0 is unused
  std::vector<cv::Mat> rebuilt;   ///< each level rebuilt from the coarser ones; 0 and the last are unused
  using Scratch = std::vector<std::vector<float>>;
  /// Rows in progress: one element for each stripe of a level. Its size is fixed at the start of a frame, and no level
  /// has more stripes: the number of threads may change during the frame.
  Scratch scratch;

  /// Returns the rebuilt level i, 1 or more. The coarsest level has no details to raise.
  const cv::Mat& rebuiltLevel(size_t i) const { return i + 1 == gaussian.size() ? gaussian[i] : rebuilt[i]; }
};

/// Returns room for `samples` floats in `memory`, which grows as needed.
float* scratchRows(std::vector<float>& memory, size_t samples);

/// Returns the number of pyramid levels for frames of this size: one more than the number of times the shorter side can
/// be halved, rounding up; 1 to 8.
int clarityLevelCount(int width, int height);

/// The rows of a level: of a plane of floats, or of the values of BGRA pixels, converted where they are used.
struct clarityAnalysisPass {
  const cv::Mat& src;
  ValueRow* valueRow = nullptr;  ///< for BGRA pixels

  /// Returns row y: a pointer into the plane, or `buffer`, which has room for a row, after filling it.
  const float* row(int y, float* buffer) const {
    if (valueRow == nullptr) return src.ptr<float>(y);
    valueRow(src.ptr(y), buffer, static_cast<size_t>(src.cols));
    return buffer;
  }
};

/// Halves a plane, to (side + 1) / 2; copies it if a side is below 2. Works in `stripes` parts on OpenCV's threads, each
/// with its own scratch memory.
void pyramidDown(const clarityAnalysisPass& input, cv::Mat& output, int stripes, ClarityPyramid::Scratch& scratch,
                 const PyramidKernels& kernels);

/// Upsamples the rows of a plane to `size`, the size of the next finer level. A plane that already has this size is
/// passed through.
class PyramidUp {
 public:
  /// `rows` has room for three rows of the finer level.
  PyramidUp(const cv::Mat& input, cv::Size size, float* rows, const PyramidKernels& kernels)
      : input_(input), size_(size), rows_(rows), kernels_(kernels) {}

  /// Moves to row y; rows must be visited from top to bottom.
  void moveTo(int y);

  /// Returns the samples of this row from column x on: a pointer into the plane, or `buffer` after filling it.
  const float* samples(int x, size_t count, float* buffer) const;

 private:
  float* across(int row) const { return rows_ + static_cast<ptrdiff_t>(row % 3) * size_.width; }
  bool isCopy() const { return input_.size() == size_; }

  const cv::Mat& input_;
  cv::Size size_;
  float* rows_;  // up to three rows of the input, as wide as the finer level
  PyramidKernels kernels_;
  int y_ = 0;
  int next_ = 0;  // the first row of the input that is not upsampled yet
};

/// Builds a pyramid of `levels` levels, at least one; each has half the size of the previous one. Level 0 is processed
/// in `stripes` parts, at most as many as pyramid.scratch has elements.
void buildClarityPyramid(const clarityAnalysisPass& value, int levels, int stripes, ClarityPyramid& pyramid,
                         const PyramidKernels& kernels);

/// Rebuilds the levels, coarsest first, with raised details, except for level 0, which is left to the last pass over
/// the frame.
void collapseClarityPyramid(ClarityPyramid& pyramid, const PyramidKernels& kernels, DetailRow* detailRow);

}  // namespace Lumvane
