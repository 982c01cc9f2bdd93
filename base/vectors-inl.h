// The vector types that all kernels use, and the few operations that are a single instruction on x86 but several in
// portable code. Include this after <hwy/foreach_target.h>.

#if defined(LUMVANE_BASE_VECTORS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LUMVANE_BASE_VECTORS_INL_H
#undef LUMVANE_BASE_VECTORS_INL_H
#else
#define LUMVANE_BASE_VECTORS_INL_H
#endif

#include <hwy/cache_control.h>
#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>

#if defined(__FAST_MATH__) || __FINITE_MATH_ONLY__ || defined(__ASSOCIATIVE_MATH__) || defined(__RECIPROCAL_MATH__)
#error "Kernels need each float operation as written: no -ffast-math, nor a part of it. See cmake/CompilerFlags.cmake."
#endif

// Without vectors, the plain forms of the kernels are used.
#undef LUMVANE_HAVE_VECTORS
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128
#define LUMVANE_HAVE_VECTORS 1
#else
#define LUMVANE_HAVE_VECTORS 0
#endif

// Ends a file of kernels. Each target has a function kernels() that returns them; `function` returns those of the best
// target that the processor has.
#undef LUMVANE_DISPATCH
#if HWY_ONCE
#define LUMVANE_DISPATCH(Kernels, function)                      \
  namespace Lumvane {                                            \
  HWY_EXPORT(kernels);                                           \
  Kernels function() { return HWY_DYNAMIC_DISPATCH(kernels)(); } \
  }
#else
#define LUMVANE_DISPATCH(Kernels, function)
#endif

#if LUMVANE_HAVE_VECTORS

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using F = hn::CappedTag<float, 16>;  // up to 512 bits, for which buffers of 64 bytes are aligned
using I = hn::RebindToSigned<F>;
using U = hn::RebindToUnsigned<F>;
using Bytes = hn::Repartition<uint8_t, F>;
using Words = hn::Repartition<uint16_t, F>;
using Shorts = hn::Repartition<int16_t, F>;
using Doubles = hn::Repartition<double, F>;
using HalfF = hn::Half<F>;  // as many lanes as Doubles
using HalfI = hn::Half<I>;
using VF = hn::Vec<F>;
using VI = hn::Vec<I>;
using VU = hn::Vec<U>;  // also BGRA pixels, byte 0 in the low bits
using VBytes = hn::Vec<Bytes>;
using VWords = hn::Vec<Words>;
using VShorts = hn::Vec<Shorts>;

constexpr size_t kLanes = hn::MaxLanes(F());

HWY_INLINE VU loadPixels(const uint8_t* from) { return hn::BitCast(U(), hn::LoadU(Bytes(), from)); }
HWY_INLINE void storePixels(VU pixels, uint8_t* to) { hn::StoreU(hn::BitCast(Bytes(), pixels), Bytes(), to); }

// Prefetches the data `distance` bytes ahead. The hardware prefetcher stops at page boundaries; without this, a frame
// takes 3 to 10 % longer. Prefetching beyond the end of a frame is harmless.
HWY_INLINE void fetchAhead(const uint8_t* pixels, size_t distance) {
  hwy::Prefetch(reinterpret_cast<const void*>(reinterpret_cast<uintptr_t>(pixels) + distance));
}

// Reorders the bytes of each 16-byte block; 0x80 gives 0.
HWY_INLINE VU shuffled(VU v, const uint8_t (&order)[16]) {
  return hn::BitCast(U(), hn::TableLookupBytesOr0(hn::BitCast(Bytes(), v), hn::LoadDup128(Bytes(), order)));
}

// Returns the sums of neighbouring products.
HWY_INLINE VI pairSums(VShorts a, VShorts b) {
  VI second = hn::Zero(I());
  const VI first = hn::ReorderWidenMulAccumulate(I(), a, b, hn::Zero(I()), second);
  return hn::RearrangeToOddPlusEven(first, second);
}

// The larger value, or NaN where `b` is NaN: on processors other than x86, hn::Max would return `a`.
HWY_INLINE VF maxOrNan(VF a, VF b) {
#if HWY_ARCH_X86
  return hn::Max(a, b);
#else
  return hn::IfThenElse(hn::Gt(a, b), a, b);
#endif
}

// gatherPoints: loads four floats from each of base + places[0], base + places[4], ..., one 16-byte block each. The
// fourth is whatever follows the point.
// rounded: rounds to the nearest integer, ties to even. NaN and values beyond int32_t give a negative number.
// truncated: truncates towards zero; the values must fit an int32_t.
// packed: clamps to 0 to 255; byte 4 * i + c of a block comes from lane c of that block of vector i.
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3  // newer targets have lower numbers

HWY_INLINE VF gatherPoints(const float* base, const uint32_t* places) {
  __m512 v = _mm512_castps128_ps512(_mm_loadu_ps(base + places[0]));
  v = _mm512_mask_broadcast_f32x4(v, 0x00F0, _mm_loadu_ps(base + places[4]));
  v = _mm512_mask_broadcast_f32x4(v, 0x0F00, _mm_loadu_ps(base + places[8]));
  return VF{_mm512_mask_broadcast_f32x4(v, 0xF000, _mm_loadu_ps(base + places[12]))};
}
HWY_INLINE VI rounded(VF v) { return VI{_mm512_cvtps_epi32(v.raw)}; }
HWY_INLINE VI truncated(VF v) { return VI{_mm512_cvttps_epi32(v.raw)}; }
HWY_INLINE VU packed(VI v0, VI v1, VI v2, VI v3) {
  return VU{_mm512_packus_epi16(_mm512_packs_epi32(v0.raw, v1.raw), _mm512_packs_epi32(v2.raw, v3.raw))};
}

#elif HWY_TARGET == HWY_AVX2

HWY_INLINE VF gatherPoints(const float* base, const uint32_t* places) {
  const __m256 v = _mm256_castps128_ps256(_mm_loadu_ps(base + places[0]));
  return VF{_mm256_insertf128_ps(v, _mm_loadu_ps(base + places[4]), 1)};
}
HWY_INLINE VI rounded(VF v) { return VI{_mm256_cvtps_epi32(v.raw)}; }
HWY_INLINE VI truncated(VF v) { return VI{_mm256_cvttps_epi32(v.raw)}; }
HWY_INLINE VU packed(VI v0, VI v1, VI v2, VI v3) {
  return VU{_mm256_packus_epi16(_mm256_packs_epi32(v0.raw, v1.raw), _mm256_packs_epi32(v2.raw, v3.raw))};
}

#else  // blocks of 16 bytes

HWY_INLINE VF gatherPoints(const float* base, const uint32_t* places) { return hn::LoadU(F(), base + places[0]); }
#if HWY_ARCH_X86
HWY_INLINE VI rounded(VF v) { return VI{_mm_cvtps_epi32(v.raw)}; }
HWY_INLINE VI truncated(VF v) { return VI{_mm_cvttps_epi32(v.raw)}; }
HWY_INLINE VU packed(VI v0, VI v1, VI v2, VI v3) {
  return VU{_mm_packus_epi16(_mm_packs_epi32(v0.raw, v1.raw), _mm_packs_epi32(v2.raw, v3.raw))};
}
#else
HWY_INLINE VI rounded(VF v) {
  // NearestInt itself saturates values that are too small.
  const VF low = hn::IfThenElse(hn::Lt(v, hn::Set(F(), 2147483648.0f)), v, hn::Set(F(), -1.0f));
  return hn::NearestInt(low);
}
HWY_INLINE VI truncated(VF v) { return hn::ConvertTo(I(), v); }
HWY_INLINE VU packed(VI v0, VI v1, VI v2, VI v3) {
  const Shorts shorts;
  const auto low = hn::ReorderDemote2To(shorts, v0, v1), high = hn::ReorderDemote2To(shorts, v2, v3);
  const hn::Half<Bytes> half;
  return hn::BitCast(U(), hn::Combine(Bytes(), hn::DemoteTo(half, high), hn::DemoteTo(half, low)));
}
#endif

#endif

}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

#endif  // LUMVANE_HAVE_VECTORS
#endif  // include guard
