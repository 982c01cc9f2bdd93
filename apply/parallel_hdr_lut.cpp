#include "apply/parallel_hdr_lut.h"

#include "base/band_rows.h"

namespace Lumvane {

void parallelCacheCubeLut_::operator()(const cv::Range& range) const {
  const HdrKernels kernels = hdrKernels();
  for (int r = range.start * planesPerBand; r < range.end * planesPerBand; ++r) {
    const auto red = static_cast<uint8_t>(r);
    kernels.fillCache(lut, red, cacheData + cacheEntry(red, 0, 0));
  }
}

void parallelCubeLut_::operator()(const cv::Range& range) const {
  const BandRows rows = bandRows(range, dst->rows, bands);
  const auto pixels = static_cast<size_t>(dst->cols);
  for (int y = rows.first; y < rows.end; ++y) {
    if (cache->empty()) {
      mapThroughLattice(lut, src->ptr(y), dst->ptr(y), pixels);
    } else {
      hdrKernels().cacheRow(cache->data(), src->ptr(y), dst->ptr(y), pixels);
    }
  }
}

}  // namespace Lumvane
