#include "apply/parallel_cube_lut.h"

#include "apply/row_kernels.h"
#include "lut/blend_table.h"

namespace Lumvane {

void gradeRows(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice) {
  const auto table = acquireTable();
  for (int y = 0; y < dst.rows; ++y) {
    plain::gradeRow(lattice, table->multiply, src.ptr(y), dst.ptr(y), static_cast<size_t>(dst.cols));
  }
}

void gradeRowsToPlane(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice) {
  for (int y = 0; y < dst.rows; ++y) {
    plain::gradeRowToPlane(lattice, src.ptr(y), dst.ptr(y), static_cast<size_t>(dst.cols));
  }
}

}  // namespace Lumvane
