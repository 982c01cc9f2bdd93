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

void fadeRow(const BlendTables& blends, int32_t sourceWeight, const uint8_t* src, uint8_t* dst, size_t pixels) {
  for (size_t i = 0; i < pixels * 4; ++i) dst[i] = blends.mix[src[i]][dst[i]][sourceWeight];
}

void gradeAndFadeRow(const LatticeView& lattice, const BlendTables& blends, int32_t sourceWeight, const uint8_t* src,
                     uint8_t* dst, size_t pixels) {
  plain::gradeRow(lattice, blends, src, dst, pixels);
  plain::fadeRow(blends, sourceWeight, src, dst, pixels);
}

}  // namespace Lumvane::plain
