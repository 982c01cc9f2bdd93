#include "apply/parallel_cube_lut.h"

#include "apply/row_kernels.h"
#include "lut/blend_table.h"

namespace Lumvane {

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

void gradeRowsToPlane(cv::Mat& dst, const cv::Mat& src, const LatticeView& lattice, int32_t /*sourceWeight*/) {
  for (int y = 0; y < dst.rows; ++y) {
    plain::gradeRowToPlane(lattice, src.ptr(y), dst.ptr(y), static_cast<size_t>(dst.cols));
  }
}

}  // namespace Lumvane
