#include "apply/parallel_hdr_lut.h"

#include "apply/band_rows.h"

namespace Lumvane {
namespace {

void mapRow(const HdrLatticeView& lattice, const uint8_t* src, uint8_t* dst, size_t pixels) {
  for (size_t i = 0; i < pixels; ++i, src += 4, dst += 4) {
    const RGB8 colour = hdrColour(lattice, src[2], src[1], src[0]);
    for (int c = 0; c < 3; ++c) dst[c] = colour.component[2 - c];
    dst[3] = src[3];
  }
}

}  // namespace

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
        mapRow(view, src->ptr(y), dst->ptr(y), pixels);
      } else {
        kernels.cacheRow(cache->data(), src->ptr(y), dst->ptr(y), pixels);
      }
    }
  }
}

}  // namespace Lumvane
