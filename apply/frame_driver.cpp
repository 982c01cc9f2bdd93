#include "apply/frame_driver.h"

#include <cstdlib>

#include "apply/parallel_cube_lut.h"
#include "base/overlap.h"
#include "base/parallel.h"

namespace Lumvane {
namespace {

constexpr int64_t kMaxPixelsOnCallingThread = 10000;
constexpr int32_t kBands = 8;

bool rowsOverlap(const cv::Mat& frame) {
  const auto step = static_cast<ptrdiff_t>(frame.step[0]);
  return frame.rows > 1 && std::abs(step) < static_cast<ptrdiff_t>(frame.cols * frame.elemSize());
}

template <class Worker>
void run(Worker& worker, cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice, const GradeKernels& kernels) {
  worker.dst = &dst;
  worker.src = &src;
  // Where rows of the destination overlap, the last one to be written must not depend on the threads.
  worker.bands = isSmall(dst) || rowsOverlap(dst) ? 1 : kBands;
  worker.latticeSize = lattice.latticeSize;
  worker.fraction = lattice.fraction;
  worker.cell = lattice.cell;
  worker.lattice = lattice.lattice;
  worker.kernels = &kernels;
  if (worker.bands == 1) return worker(cv::Range(0, 1));
  runParallel(worker.bands, worker);
}

}  // namespace

cv::Mat wrapFrame(uint8_t* pixels, int32_t width, int32_t height, int32_t strideBytes, int type) {
  cv::Mat frame(height, width, type, pixels);
  // Set afterwards, because the constructor refuses strides shorter than a row. Sign-extended: a row's address is
  // computed modulo 2^64, so a negative stride moves to lower addresses.
  if (strideBytes != 0) frame.step[0] = static_cast<size_t>(strideBytes);
  return frame;
}

bool isSmall(const cv::Mat& frame) {
  return static_cast<int64_t>(frame.rows) * frame.cols <= kMaxPixelsOnCallingThread;
}

void gradeFrame(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice, const BlendTables& blends,
                int32_t sourceWeight, const GradeKernels& kernels) {
  const bool fadeAfterwards = sourceWeight > 0 && (Extent(dst).overlaps(Extent(src)) || rowsOverlap(dst));
  parallelCubeLut worker;
  worker.blends = blends;
  worker.sourceWeight = fadeAfterwards ? 0 : sourceWeight;
  run(worker, dst, src, lattice, kernels);
  if (!fadeAfterwards) return;
  for (int y = 0; y < dst.rows; ++y) {
    kernels.fade(blends, sourceWeight, src.ptr(y), dst.ptr(y), static_cast<size_t>(src.cols));
  }
}

void gradeFrameToPlane(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice, const GradeKernels& kernels) {
  parallelAlphaCubeLut worker;
  run(worker, dst, src, lattice, kernels);
}

}  // namespace Lumvane
