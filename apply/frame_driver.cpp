#include "apply/frame_driver.h"

#include <cstdlib>

#include "base/band_rows.h"
#include "base/overlap.h"
#include "base/parallel.h"

namespace Lumvane {
namespace {

constexpr int64_t kMaxPixelsOnCallingThread = 10000;

bool rowsOverlap(const cv::Mat& frame) {
  const auto step = static_cast<ptrdiff_t>(frame.step[0]);
  return frame.rows > 1 && std::abs(step) < static_cast<ptrdiff_t>(frame.cols * frame.elemSize());
}

// Where rows of the destination overlap, the last one to be written must not depend on the threads.
int32_t bandsOf(const cv::Mat& dst) { return isSmall(dst) || rowsOverlap(dst) ? 1 : kBands; }

// Grades the bands of a BGRA frame whose numbers are in the range. Workers are used for one run and own nothing. dst may
// be src only if sourceWeight is 0.
struct parallelCubeLut : cv::ParallelLoopBody {
  parallelCubeLut(cv::Mat& to, const cv::Mat& from, const LatticeView& view, const BlendTables& tables, int32_t weight)
      : dst(&to), src(&from), bands(bandsOf(to)), lut(view), blends(tables), sourceWeight(weight) {}

  cv::Mat* dst;
  const cv::Mat* src;
  int32_t bands;
  LatticeView lut;
  BlendTables blends;
  int32_t sourceWeight;  // 0 to 255: of the source when the graded rows are blended with it

  void operator()(const cv::Range& range) const override {
    const GradeKernels kernels = gradeKernels();
    const BandRows rows = bandRows(range, dst->rows, bands);
    const auto pixels = static_cast<size_t>(dst->cols);
    for (int y = rows.first; y < rows.end; ++y) {
      if (sourceWeight == 0) {
        kernels.grade(lut, blends, src->ptr(y), dst->ptr(y), pixels);
      } else {
        kernels.gradeAndFade(lut, blends, sourceWeight, src->ptr(y), dst->ptr(y), pixels);
      }
    }
  }
};

// The same, from BGRA to one byte per pixel and without blending.
struct parallelAlphaCubeLut : cv::ParallelLoopBody {
  parallelAlphaCubeLut(cv::Mat& to, const cv::Mat& from, const LatticeView& view)
      : dst(&to), src(&from), bands(bandsOf(to)), lut(view) {}

  cv::Mat* dst;
  const cv::Mat* src;
  int32_t bands;
  LatticeView lut;

  void operator()(const cv::Range& range) const override {
    const GradeKernels kernels = gradeKernels();
    const BandRows rows = bandRows(range, dst->rows, bands);
    for (int y = rows.first; y < rows.end; ++y) {
      kernels.gradeToPlane(lut, src->ptr(y), dst->ptr(y), static_cast<size_t>(dst->cols));
    }
  }
};

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

void gradeFrame(cv::Mat& dst, const cv::Mat& src, const LatticeView& lut, const BlendTables& blends,
                int32_t sourceWeight) {
  const bool fadeAfterwards = sourceWeight > 0 && (Extent(dst).overlaps(Extent(src)) || rowsOverlap(dst));
  const parallelCubeLut worker(dst, src, lut, blends, fadeAfterwards ? 0 : sourceWeight);
  runParallel(worker.bands, worker);
  if (!fadeAfterwards) return;
  for (int y = 0; y < dst.rows; ++y) {
    gradeKernels().fade(blends, sourceWeight, src.ptr(y), dst.ptr(y), static_cast<size_t>(src.cols));
  }
}

void gradeFrameToPlane(cv::Mat& dst, const cv::Mat& src, const LatticeView& lut) {
  const parallelAlphaCubeLut worker(dst, src, lut);
  runParallel(worker.bands, worker);
}

}  // namespace Lumvane
