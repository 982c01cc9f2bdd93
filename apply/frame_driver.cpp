#include "apply/frame_driver.h"

#include "apply/parallel_cube_lut.h"
#include "apply/row_kernels.h"
#include "lut/blend_table.h"

namespace Lumvane {
namespace {

constexpr int64_t kMostPixelsOnCallingThread = 10000;
constexpr int32_t kBands = 8;

template <RowGrader grade>
void drive(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice) {
  if (static_cast<int64_t>(dst.rows) * dst.cols <= kMostPixelsOnCallingThread) {
    grade(dst, src, lattice);
    return;
  }
  const BandWorker<grade> worker(dst, src, kBands, lattice);
  cv::parallel_for_(cv::Range(0, kBands), worker, static_cast<double>(cv::getNumThreads()));
}

}  // namespace

cv::Mat wrapFrame(uint8_t* pixels, int32_t width, int32_t height, int32_t strideBytes, int type) {
  cv::Mat frame(height, width, type, pixels);
  // Set afterwards, since the constructor refuses strides shorter than a row. Sign-extended: a row is found by
  // multiplication modulo 2^64, so that a negative stride walks upwards.
  if (strideBytes != 0) frame.step[0] = static_cast<size_t>(strideBytes);
  return frame;
}

void gradeFrame(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice) { drive<gradeRows>(dst, src, lattice); }

void gradeFrameToPlane(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice) {
  drive<gradeRowsToPlane>(dst, src, lattice);
}

void fadeFrame(cv::Mat& dst, const cv::Mat& src, int32_t t) {
  const auto table = acquireTable();
  for (int y = 0; y < dst.rows; ++y) {
    plain::fadeRow(table->mix, t, src.ptr(y), dst.ptr(y), static_cast<size_t>(src.cols));
  }
}

}  // namespace Lumvane
