#include "apply/parallel_cube_lut.h"

#include "apply/band_rows.h"

namespace Lumvane {
namespace {

// Calls gradeRow(src, dst, pixels) for each row of the bands.
template <class Worker, class GradeOneRow>
void forEachRow(const Worker& worker, const cv::Range& range, const GradeOneRow& gradeOneRow) {
  for (int band = range.start; band < range.end; ++band) {
    const BandRows rows(worker.dst->rows, worker.bands, band);
    for (int y = rows.first; y < rows.first + rows.count; ++y) {
      gradeOneRow(worker.src->ptr(y), worker.dst->ptr(y), static_cast<size_t>(worker.dst->cols));
    }
  }
}

}  // namespace

void parallelCubeLut::operator()(const cv::Range& range) const {
  const LatticeView view = {latticeSize, fraction, cell, lattice};
  forEachRow(*this, range, [&](const uint8_t* from, uint8_t* to, size_t pixels) {
    if (sourceWeight == 0) {
      kernels->grade(view, blends, from, to, pixels);
    } else {
      kernels->gradeAndFade(view, blends, sourceWeight, from, to, pixels);
    }
  });
}

void parallelAlphaCubeLut::operator()(const cv::Range& range) const {
  const LatticeView view = {latticeSize, fraction, cell, lattice};
  forEachRow(*this, range,
             [&](const uint8_t* from, uint8_t* to, size_t pixels) { kernels->gradeToPlane(view, from, to, pixels); });
}

}  // namespace Lumvane
