#include "apply/parallel_hdr_lut.h"

#include "apply/band_rows.h"
#include "apply/row_kernels.h"

namespace Lumvane {

void parallelCacheCubeLut_::operator()(const cv::Range& range) const {
  const HdrLatticeView view = {latticeSize, fraction, cell, lattice};
  for (int r = range.start * planesPerBand; r < range.end * planesPerBand; ++r) {
    RGB8* entry = cacheData + cacheEntry(static_cast<uint8_t>(r), 0, 0);
    for (int g = 0; g < 256; ++g) {
      for (int b = 0; b < 256; ++b) {
        *entry++ = plain::hdrColour(view, static_cast<uint8_t>(r), static_cast<uint8_t>(g), static_cast<uint8_t>(b));
      }
    }
  }
}

void parallelCubeLut_::operator()(const cv::Range& range) const {
  const HdrLatticeView view = {latticeSize, fraction, cell, lattice};
  const auto pixels = static_cast<size_t>(dst->cols);
  for (int band = range.start; band < range.end; ++band) {
    const BandRows rows(dst->rows, bands, band);
    for (int y = rows.first; y < rows.first + rows.count; ++y) {
      if (cache->empty()) {
        plain::hdrLatticeRow(view, src->ptr(y), dst->ptr(y), pixels);
      } else {
        plain::hdrCacheRow(cache->data(), src->ptr(y), dst->ptr(y), pixels);
      }
    }
  }
}

}  // namespace Lumvane
