// The two blends of BlendTables by arithmetic, on vectors of BGRA pixels.

#if defined(LUMVANE_APPLY_BYTE_BLENDS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LUMVANE_APPLY_BYTE_BLENDS_INL_H
#undef LUMVANE_APPLY_BYTE_BLENDS_INL_H
#else
#define LUMVANE_APPLY_BYTE_BLENDS_INL_H
#endif

#include "base/bgra-inl.h"

#if LUMVANE_HAVE_VECTORS

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {

using VW = hn::Vec<Words>;

HWY_INLINE VW evenBytes(VU v) { return hn::And(hn::BitCast(Words(), v), hn::Set(Words(), 0xFF)); }
HWY_INLINE VW oddBytes(VU v) { return hn::ShiftRight<8>(hn::BitCast(Words(), v)); }

// x / 255, truncated, of both: 0x8081 / 2^23 is as close to 1 / 255 as all 16-bit values need.
HWY_INLINE VU divideBy255(VW even, VW odd) {
  const VW reciprocal = hn::Set(Words(), 0x8081);
  const VW low = hn::ShiftRight<7>(hn::MulHigh(even, reciprocal));
  const VW high = hn::ShiftLeft<8>(hn::ShiftRight<7>(hn::MulHigh(odd, reciprocal)));
  return hn::BitCast(U(), hn::Or(low, high));
}

// The colour bytes of `graded` times the alpha of `pixels` / 255, to the nearest; byte 3 is that of `pixels`.
HWY_INLINE VU multiplyByAlpha(VU graded, VU pixels) {
  const VU alphaBits = hn::Set(U(), 0xFF000000);
  const VU colours = hn::Or(graded, alphaBits);
  if (HWY_LIKELY(hn::AllTrue(U(), hn::Gt(pixels, hn::Set(U(), 0xFEFFFFFF))))) return colours;
  alignas(16) static constexpr uint8_t kAlphas[16] = {3,  0x80, 3,  0x80, 7,  0x80, 7,  0x80,
                                                      11, 0x80, 11, 0x80, 15, 0x80, 15, 0x80};
  const VW alpha = hn::BitCast(Words(), shuffled(pixels, kAlphas));
  const VW half = hn::Set(Words(), 127);
  return divideBy255(hn::Add(hn::Mul(evenBytes(colours), alpha), half),
                     hn::Add(hn::Mul(oddBytes(colours), alpha), half));
}

// (source * sourceWeight + graded * (255 - sourceWeight)) / 255, truncated.
HWY_INLINE VU fade(VU source, VU graded, int32_t sourceWeight) {
  const VW keep = hn::Set(Words(), static_cast<uint16_t>(sourceWeight));
  const VW take = hn::Set(Words(), static_cast<uint16_t>(255 - sourceWeight));
  return divideBy255(hn::Add(hn::Mul(evenBytes(source), keep), hn::Mul(evenBytes(graded), take)),
                     hn::Add(hn::Mul(oddBytes(source), keep), hn::Mul(oddBytes(graded), take)));
}

}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

#endif  // LUMVANE_HAVE_VECTORS
#endif  // include guard
