#include "apply/byte_conversions.h"
#include "apply/hdr_kernels.h"
#include "apply/tetrahedral_lookup.h"

namespace Lumvane::plain {
namespace {

void storeColour(const RGB8& colour, uint8_t alpha, uint8_t* dst) {
  dst[0] = colour.component[2];
  dst[1] = colour.component[1];
  dst[2] = colour.component[0];
  dst[3] = alpha;
}

}  // namespace

RGB8 hdrColour(const HdrLatticeView& lattice, uint8_t r, uint8_t g, uint8_t b) {
  const auto out = tetrahedralLookup(lattice, r, g, b);
  return {{truncToByte(out[0]), truncToByte(out[1]), truncToByte(out[2])}};
}

void hdrLatticeRow(const HdrLatticeView& lattice, const uint8_t* src, uint8_t* dst, size_t pixels) {
  for (size_t i = 0; i < pixels; ++i, src += 4, dst += 4) {
    storeColour(hdrColour(lattice, src[2], src[1], src[0]), src[3], dst);
  }
}

void hdrCacheRow(const RGB8* cache, const uint8_t* src, uint8_t* dst, size_t pixels) {
  for (size_t i = 0; i < pixels; ++i, src += 4, dst += 4) {
    storeColour(cache[cacheEntry(src[2], src[1], src[0])], src[3], dst);
  }
}

void hdrCacheFill(const HdrLatticeView& lattice, uint8_t r, RGB8* entries) {
  for (int g = 0; g < 256; ++g) {
    for (int b = 0; b < 256; ++b) {
      *entries++ = hdrColour(lattice, r, static_cast<uint8_t>(g), static_cast<uint8_t>(b));
    }
  }
}

}  // namespace Lumvane::plain
