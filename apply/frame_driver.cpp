#include "apply/frame_driver.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <utility>

#include "apply/parallel_cube_lut.h"
#include "apply/row_kernels.h"
#include "lut/blend_table.h"

namespace Lumvane {
namespace {

constexpr int64_t kMostPixelsOnCallingThread = 10000;
constexpr int32_t kBands = 8;

template <RowGrader grade>
void drive(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice, int32_t sourceWeight) {
  if (static_cast<int64_t>(dst.rows) * dst.cols <= kMostPixelsOnCallingThread) {
    grade(dst, src, lattice, sourceWeight);
    return;
  }
  const BandWorker<grade> worker(dst, src, kBands, lattice, sourceWeight);
  cv::parallel_for_(cv::Range(0, kBands), worker, static_cast<double>(cv::getNumThreads()));
}

bool overlap(const cv::Mat& a, const cv::Mat& b) {
  const auto ends = [](const cv::Mat& frame) {  // the stride may be negative
    const auto [low, high] = std::minmax({frame.ptr(0), frame.ptr(frame.rows - 1)}, std::less<>());
    return std::pair(low, high + static_cast<size_t>(frame.cols) * frame.elemSize());
  };
  const auto [lowA, highA] = ends(a);
  const auto [lowB, highB] = ends(b);
  return std::less<>()(lowA, highB) && std::less<>()(lowB, highA);
}

bool rowsOverlap(const cv::Mat& frame) {
  const auto step = static_cast<ptrdiff_t>(frame.step[0]);
  return frame.rows > 1 && std::abs(step) < static_cast<ptrdiff_t>(frame.cols * frame.elemSize());
}

void fadeFrame(cv::Mat& dst, const cv::Mat& src, int32_t sourceWeight) {
  const auto table = acquireTable();
  const BlendTables blends = {table->multiply, table->mix};
  for (int y = 0; y < dst.rows; ++y) {
    fadeRow(blends, sourceWeight, src.ptr(y), dst.ptr(y), static_cast<size_t>(src.cols));
  }
}

}  // namespace

cv::Mat wrapFrame(uint8_t* pixels, int32_t width, int32_t height, int32_t strideBytes, int type) {
  cv::Mat frame(height, width, type, pixels);
  // Set afterwards, since the constructor refuses strides shorter than a row. Sign-extended: a row is found by
  // multiplication modulo 2^64, so that a negative stride walks upwards.
  if (strideBytes != 0) frame.step[0] = static_cast<size_t>(strideBytes);
  return frame;
}

void gradeFrame(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice, int32_t sourceWeight) {
  if (dst.empty()) return;
  const bool fadeAfterwards = sourceWeight > 0 && (overlap(dst, src) || rowsOverlap(dst));
  drive<gradeRows>(dst, src, lattice, fadeAfterwards ? 0 : sourceWeight);
  if (fadeAfterwards) fadeFrame(dst, src, sourceWeight);
}

void gradeFrameToPlane(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice) {
  drive<gradeRowsToPlane>(dst, src, lattice, 0);
}

}  // namespace Lumvane
