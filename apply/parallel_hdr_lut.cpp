#include "apply/parallel_hdr_lut.h"

#include "apply/band_rows.h"
#include "apply/hdr_kernels.h"

namespace Lumvane {

void parallelCacheCubeLut_::operator()(const cv::Range& range) const {
  const HdrLatticeView view = {latticeSize, fraction, cell, lattice};
  for (int r = range.start * planesPerBand; r < range.end * planesPerBand; ++r) {
    const auto red = static_cast<uint8_t>(r);
    hdrCacheFill(view, red, cacheData + cacheEntry(red, 0, 0));
  }
}

void parallelCubeLut_::operator()(const cv::Range& range) const {
  for (int band = range.start; band < range.end; ++band) {
    const BandRows rows(dst->rows, bands, band);
    for (int y = rows.first; y < rows.first + rows.count; ++y) {
      mapRow(src->ptr(y), dst->ptr(y), static_cast<size_t>(dst->cols));
    }
  }
}

void parallelCubeLut_::mapRow(const uint8_t* from, uint8_t* to, size_t pixels) const {
  if (cache->empty()) {
    plain::hdrLatticeRow({latticeSize, fraction, cell, lattice}, from, to, pixels);
  } else {
    hdrCacheRow(cache->data(), from, to, pixels);
  }
}

}  // namespace Lumvane
