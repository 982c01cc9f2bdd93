#include "apply/parallel_cube_lut.h"

#include "apply/band_rows.h"
#include "apply/row_kernels.h"
#include "lut/blend_table.h"

namespace Lumvane {
namespace {

// Calls grade(dst, src, lattice) with the views of each band.
template <class Worker, class Grade>
void forEachBand(const Worker& worker, const cv::Range& range, const Grade& grade) {
  for (int band = range.start; band < range.end; ++band) {
    const BandRows rows(worker.dst->rows, worker.bands, band);
    const cv::Rect area(0, rows.first, worker.dst->cols, rows.count);
    cv::Mat dst(*worker.dst, area);
    grade(dst, cv::Mat(*worker.src, area),
          LatticeView{worker.latticeSize, worker.fraction, worker.cell, worker.lattice});
  }
}

}  // namespace

void gradeRows(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice, int32_t sourceWeight) {
  const auto table = acquireTable();
  const BlendTables blends = {table->multiply, table->mix};
  const auto pixels = static_cast<size_t>(dst.cols);
  for (int y = 0; y < dst.rows; ++y) {
    if (sourceWeight == 0) {
      gradeRow(lattice, blends, src.ptr(y), dst.ptr(y), pixels);
    } else {
      gradeAndFadeRow(lattice, blends, sourceWeight, src.ptr(y), dst.ptr(y), pixels);
    }
  }
}

void gradeRowsToPlane(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice) {
  for (int y = 0; y < dst.rows; ++y) {
    plain::gradeRowToPlane(lattice, src.ptr(y), dst.ptr(y), static_cast<size_t>(dst.cols));
  }
}

void parallelCubeLut::operator()(const cv::Range& range) const {
  forEachBand(*this, range,
              [](cv::Mat& to, const cv::Mat& from, const LatticeView& view) { gradeRows(to, from, view, 0); });
}

void parallelFadedCubeLut::operator()(const cv::Range& range) const {
  forEachBand(*this, range, [this](cv::Mat& to, const cv::Mat& from, const LatticeView& view) {
    gradeRows(to, from, view, sourceWeight);
  });
}

void parallelAlphaCubeLut::operator()(const cv::Range& range) const { forEachBand(*this, range, gradeRowsToPlane); }

}  // namespace Lumvane
