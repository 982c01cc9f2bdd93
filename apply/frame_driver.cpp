#include "apply/frame_driver.h"

#include <cstdlib>

#include "apply/parallel_cube_lut.h"
#include "apply/row_kernels.h"
#include "base/overlap.h"
#include "base/parallel.h"
#include "lut/blend_table.h"

namespace Lumvane {
namespace {

constexpr int64_t kMostPixelsOnCallingThread = 10000;
constexpr int32_t kBands = 8;

bool isSmall(const cv::Mat& frame) {
  return static_cast<int64_t>(frame.rows) * frame.cols <= kMostPixelsOnCallingThread;
}

template <class Worker>
void runBands(Worker& worker, cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice) {
  worker.dst = &dst;
  worker.src = &src;
  worker.bands = kBands;
  worker.latticeSize = lattice.latticeSize;
  worker.fraction = lattice.fraction;
  worker.cell = lattice.cell;
  worker.lattice = lattice.lattice;
  runParallel(kBands, worker);
}

bool overlap(const cv::Mat& a, const cv::Mat& b) {
  const auto extent = [](const cv::Mat& frame) {
    return Extent(frame.ptr(), static_cast<ptrdiff_t>(frame.step[0]), frame.cols * frame.elemSize(), frame.rows);
  };
  return extent(a).overlaps(extent(b));
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

void gradeFrame(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice) {
  if (dst.empty()) return;
  if (isSmall(dst)) return gradeRows(dst, src, lattice, 0);
  parallelCubeLut worker;
  runBands(worker, dst, src, lattice);
}

void gradeAndFadeFrame(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice, int32_t sourceWeight) {
  if (dst.empty()) return;
  if (sourceWeight == 0 || overlap(dst, src) || rowsOverlap(dst)) {
    gradeFrame(dst, src, lattice);
    if (sourceWeight > 0) fadeFrame(dst, src, sourceWeight);
    return;
  }
  if (isSmall(dst)) return gradeRows(dst, src, lattice, sourceWeight);
  parallelFadedCubeLut worker;
  worker.sourceWeight = sourceWeight;
  runBands(worker, dst, src, lattice);
}

void gradeFrameToPlane(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice) {
  if (isSmall(dst)) {
    const auto table = acquireTable();  // a process builds it in its first small frame, whatever the mode
    return gradeRowsToPlane(dst, src, lattice);
  }
  parallelAlphaCubeLut worker;
  runBands(worker, dst, src, lattice);
}

}  // namespace Lumvane
