// Row kernels of LUT grading: the plain forms, which define the output bytes, and the vector forms.

#include "apply/grade_kernels.h"

#ifndef HWY_TARGET_INCLUDE  // once; the code after this block is compiled for each instruction set
#define HWY_TARGET_INCLUDE "apply/grade_kernels.cpp"

#include <cstring>

#include "apply/tetrahedral_lookup.h"

namespace Lumvane {
namespace plain {

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
  gradeRow(lattice, blends, src, dst, pixels);
  fadeRow(blends, sourceWeight, src, dst, pixels);
}

}  // namespace plain

const GradeKernels plainGradeKernels = {plain::gradeRow, plain::gradeRowToPlane, plain::fadeRow,
                                        plain::gradeAndFadeRow};

}  // namespace Lumvane

#endif

#include <hwy/foreach_target.h>  // must precede all vector code

#include "apply/lattice_lookup-inl.h"
#include "base/vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {
namespace {

#if LUMVANE_HAVE_VECTORS

// Gives, once rounded, the byte of roundToByte, which adds 0.5 in double precision:
// - 0, and 1 to 255: the addend is 0.5 minus half a unit in the last place, so that the float sum is a tie only where the
//   exact sum is.
// - between 0 and 1, which must give 1: first multiplied by 2^30 and limited to 0.75. Values up to 2^-54, which are lost
//   when 0.5 is added in double precision, still give 0.
HWY_INLINE VF addHalf(VF v) {
  const VF raised = hn::Min(hn::Mul(v, hn::Set(F(), 1073741824.0f)), hn::Set(F(), 0.75f));
  return hn::Add(maxOrNan(raised, v), hn::Set(F(), 0.49999997f));
}

HWY_INLINE VWords evenBytes(VU v) { return hn::And(hn::BitCast(Words(), v), hn::Set(Words(), 0xFF)); }
HWY_INLINE VWords oddBytes(VU v) { return hn::ShiftRight<8>(hn::BitCast(Words(), v)); }

// Divides both by 255, truncating: 0x8081 / 2^23 is close enough to 1 / 255 for all 16-bit values.
HWY_INLINE VU divideBy255(VWords even, VWords odd) {
  const VWords reciprocal = hn::Set(Words(), 0x8081);
  const VWords low = hn::ShiftRight<7>(hn::MulHigh(even, reciprocal));
  const VWords high = hn::ShiftLeft<8>(hn::ShiftRight<7>(hn::MulHigh(odd, reciprocal)));
  return hn::BitCast(U(), hn::Or(low, high));
}

// Multiplies the colour bytes of `graded` by alpha / 255, rounded to nearest. Alpha and byte 3 are those of `pixels`.
HWY_INLINE VU multiplyByAlpha(VU graded, VU pixels) {
  const VU alphaBits = hn::Set(U(), 0xFF000000);
  const VU colours = hn::Or(graded, alphaBits);
  if (HWY_LIKELY(hn::AllTrue(U(), hn::Gt(pixels, hn::Set(U(), 0xFEFFFFFF))))) return colours;
  alignas(16) static constexpr uint8_t kAlphas[16] = {3,  0x80, 3,  0x80, 7,  0x80, 7,  0x80,
                                                      11, 0x80, 11, 0x80, 15, 0x80, 15, 0x80};
  const VWords alpha = hn::BitCast(Words(), shuffled(pixels, kAlphas));
  const VWords half = hn::Set(Words(), 127);
  return divideBy255(hn::Add(hn::Mul(evenBytes(colours), alpha), half),
                     hn::Add(hn::Mul(oddBytes(colours), alpha), half));
}

// (source * sourceWeight + graded * (255 - sourceWeight)) / 255, truncated.
HWY_INLINE VU fade(VU source, VU graded, int32_t sourceWeight) {
  const VWords keep = hn::Set(Words(), static_cast<uint16_t>(sourceWeight));
  const VWords take = hn::Set(Words(), static_cast<uint16_t>(255 - sourceWeight));
  return divideBy255(hn::Add(hn::Mul(evenBytes(source), keep), hn::Mul(evenBytes(graded), take)),
                     hn::Add(hn::Mul(oddBytes(source), keep), hn::Mul(oddBytes(graded), take)));
}

constexpr size_t kPrefetchDistance = 512;  // bytes; the fastest of those tried for this single pass

// The row argument of interpolateVectors; blends with the source if `fades`.
template <bool fades>
struct GradedRow {
  const Axes& axes;
  const uint8_t* src;
  uint8_t* dst;
  int32_t sourceWeight;

  HWY_INLINE VU source(size_t v) const { return loadPixels(src + 4 * kLanes * v); }
  HWY_INLINE void find(size_t v, Tetrahedra& out) const { findTetrahedra(axes, source(v), out); }
  HWY_INLINE VI toBytes(VF v) const { return rounded(addHalf(v)); }
  HWY_INLINE void store(size_t v, VU components) const {
    uint8_t* const to = dst + 4 * kLanes * v;
    fetchAhead(src + 4 * kLanes * v, kPrefetchDistance);
    fetchAhead(to, kPrefetchDistance);
    const VU in = source(v), graded = multiplyByAlpha(toBgr(components), in);
    storePixels(fades ? fade(in, graded, sourceWeight) : graded, to);
  }
};

template <bool fades>
HWY_INLINE void gradePixels(const LatticeView& lattice, int32_t sourceWeight, const uint8_t* src, uint8_t* dst,
                            size_t pixels) {
  const Axes axes(lattice.latticeSize);
  const size_t vectors = pixels / kLanes, done = 4 * kLanes * vectors, left = 4 * pixels - done;
  interpolateVectors(lattice.lattice, vectors, GradedRow<fades>{axes, src, dst, sourceWeight});
  if (left == 0) return;
  // The remaining pixels go through a padded vector.
  alignas(64) uint8_t rest[4 * kLanes] = {};
  std::memcpy(rest, src + done, left);
  interpolateVectors(lattice.lattice, 1, GradedRow<fades>{axes, rest, rest, sourceWeight});
  std::memcpy(dst + done, rest, left);
}

void gradeRow(const LatticeView& lattice, const BlendTables&, const uint8_t* src, uint8_t* dst, size_t pixels) {
  gradePixels<false>(lattice, 0, src, dst, pixels);
}

void gradeAndFadeRow(const LatticeView& lattice, const BlendTables&, int32_t sourceWeight, const uint8_t* src,
                     uint8_t* dst, size_t pixels) {
  gradePixels<true>(lattice, sourceWeight, src, dst, pixels);
}

void fadeRow(const BlendTables& blends, int32_t sourceWeight, const uint8_t* src, uint8_t* dst, size_t pixels) {
  size_t i = 0;
  for (; i + kLanes <= pixels; i += kLanes) {
    storePixels(fade(loadPixels(src + 4 * i), loadPixels(dst + 4 * i), sourceWeight), dst + 4 * i);
  }
  plain::fadeRow(blends, sourceWeight, src + 4 * i, dst + 4 * i, pixels - i);
}

#else
using namespace plain;
#endif

GradeKernels kernels() { return {gradeRow, plain::gradeRowToPlane, fadeRow, gradeAndFadeRow}; }

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

LUMVANE_DISPATCH(GradeKernels, gradeKernels)
