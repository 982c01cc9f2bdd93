// The row kernels in their plain form, which defines what they give.

#include "apply/byte_conversions.h"
#include "apply/row_kernels.h"
#include "apply/tetrahedral_lookup.h"

namespace Lumvane::plain {

void gradeRow(const LatticeView& lattice, const BlendTables& blends, const uint8_t* src, uint8_t* dst, size_t pixels) {
  for (size_t i = 0; i < pixels; ++i, src += 4, dst += 4) {
    const uint8_t alpha = src[3];
    const auto out = tetrahedralLookup(lattice, src[2], src[1], src[0]);
    dst[0] = blends.multiply[alpha][roundToByte(out[2])];
    dst[1] = blends.multiply[alpha][roundToByte(out[1])];
    dst[2] = blends.multiply[alpha][roundToByte(out[0])];
    dst[3] = alpha;
  }
}

void gradeRowToPlane(const LatticeView& lattice, const uint8_t* src, uint8_t* dst, size_t pixels) {
  for (size_t i = 0; i < pixels; ++i, src += 4) {
    dst[i] = roundToByte(tetrahedralLookup(lattice, src[2], src[1], src[0])[0]);
  }
}

void fadeRow(const BlendTables& blends, int32_t t, const uint8_t* src, uint8_t* dst, size_t pixels) {
  for (size_t i = 0; i < pixels * 4; ++i) dst[i] = blends.mix[src[i]][dst[i]][t];
}

void gradeAndFadeRow(const LatticeView& lattice, const BlendTables& blends, int32_t t, const uint8_t* src, uint8_t* dst,
                     size_t pixels) {
  plain::gradeRow(lattice, blends, src, dst, pixels);
  plain::fadeRow(blends, t, src, dst, pixels);
}

RGB8 hdrColour(const HdrLatticeView& lattice, uint8_t r, uint8_t g, uint8_t b) {
  const auto out = tetrahedralLookup(lattice, r, g, b);
  return {{truncToByte(out[0]), truncToByte(out[1]), truncToByte(out[2])}};
}

namespace {

void storeColour(const RGB8& colour, uint8_t alpha, uint8_t* dst) {
  dst[0] = colour.component[2];
  dst[1] = colour.component[1];
  dst[2] = colour.component[0];
  dst[3] = alpha;
}

}  // namespace

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

}  // namespace Lumvane::plain
