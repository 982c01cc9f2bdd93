#include "apply/parallel_hdr_lut.h"

#include "apply/band_rows.h"

namespace Lumvane {
void parallelCacheCubeLut_::operator()(const cv::Range& range) const {
  const HdrKernels& kernels = hdrKernels();
  for (int r = range.start * planesPerBand; r < range.end * planesPerBand; ++r) {
    const auto red = static_cast<uint8_t>(r);
    kernels.fillCache({latticeSize, fraction, cell, lattice}, red, cacheData + cacheEntry(red, 0, 0));
  }
}

void parallelCubeLut_::operator()(const cv::Range& range) const {
  const HdrKernels& kernels = hdrKernels();
  const HdrLatticeView view = {latticeSize, fraction, cell, lattice};
  const auto pixels = static_cast<size_t>(dst->cols);
  for (int band = range.start; band < range.end; ++band) {
    const BandRows rows(dst->rows, bands, band);
    for (int y = rows.first; y < rows.first + rows.count; ++y) {
      if (cache->empty()) {
        mapThroughLattice(view, src->ptr(y), dst->ptr(y), pixels);
      } else {
        kernels.cacheRow(cache->data(), src->ptr(y), dst->ptr(y), pixels);
      }
    }
  }
}

}  // namespace Lumvane
