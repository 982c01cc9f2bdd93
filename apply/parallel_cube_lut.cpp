#include "apply/parallel_cube_lut.h"

#include "apply/band_rows.h"
#include "apply/row_kernels.h"
#include "lut/blend_table.h"

namespace Lumvane {

void gradeRows(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice) {
  const auto table = acquireTable();
  for (int y = 0; y < dst.rows; ++y) {
    plain::gradeRow(lattice, table->multiply, src.ptr(y), dst.ptr(y), static_cast<size_t>(src.cols));
  }
}

parallelCubeLut::parallelCubeLut(cv::Mat& dst, const cv::Mat& src, int32_t bands, const LatticeView& view)
    : dst(&dst),
      src(&src),
      bands(bands),
      latticeSize(view.latticeSize),
      fraction(view.fraction),
      cell(view.cell),
      lattice(view.lattice) {}

void parallelCubeLut::operator()(const cv::Range& range) const {
  for (int band = range.start; band < range.end; ++band) {
    const BandRows rows(dst->rows, bands, band);
    const cv::Rect area(0, rows.first, dst->cols, rows.count);
    cv::Mat dstBand(*dst, area);
    gradeRows(dstBand, cv::Mat(*src, area), {latticeSize, fraction, cell, lattice});
  }
}

}  // namespace Lumvane
