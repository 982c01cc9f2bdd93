// The row kernels by vector, for every target that this processor may turn out to have.
//
// A vector of pixels takes three steps, in which lanes mean different things:
//
// 1. A lane is a pixel: tetrahedra-inl.h finds four points and their weights.
// 2. A lane is a colour component, a block of four lanes is a pixel. A point is three floats, so loads of four floats
//    bring them; gathers are slower on every processor at hand. Vector i, of four, holds the pixels i, i + 4, ... so that
//    a weight reaches its pixel by a broadcast within the block.
// 3. The components become bytes while they lie in this order, and one shuffle puts the bytes in theirs.

#include "apply/row_kernels.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "apply/row_kernels.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>  // must come before highway.h
#include <hwy/highway.h>

#include "apply/byte_blends-inl.h"
#include "apply/tetrahedra-inl.h"
#include "base/bgra-inl.h"

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {

#if !LUMVANE_HAVE_VECTORS

using plain::fadeRow;
using plain::gradeAndFadeRow;
using plain::gradeRow;

#else

// Prepares roundToByte: rounded to the nearest, ties to even, the result is what that gives.
//
// Short of 0.5 by half a unit in the last place, the sum in single precision does what 0.5 does in double precision to 0
// and to everything from 1 to 255: it never lands on a tie that is not one. Values between 0 and 1 are taken to at
// least 0.75, for which the same holds, but for those up to 2^-54, which double precision cannot tell from 0.
HWY_INLINE VF withHalf(VF v) {
  const VF raised = hn::Min(hn::Mul(v, hn::Set(F(), 1073741824.0f)), hn::Set(F(), 0.75f));
  return hn::Add(hn::Max(raised, v), hn::Set(F(), 0.49999997f));
}

// Pixels i, i + 4, ... between their points.
template <int i>
HWY_INLINE VF interpolate(const float* lattice, const Tetrahedra& t) {
  const F f;
  const VF p000 = hn::Mul(hn::Broadcast<i>(hn::Load(f, t.w0)), gatherPoints(lattice, t.p000 + i));
  const VF pa = hn::Mul(hn::Broadcast<i>(hn::Load(f, t.wa)), gatherPoints(lattice, t.pa + i));
  const VF pb = hn::Mul(hn::Broadcast<i>(hn::Load(f, t.wb)), gatherPoints(lattice, t.pb + i));
  const VF p111 = hn::Mul(hn::Broadcast<i>(hn::Load(f, t.w1)), gatherPoints(lattice, t.p111 + i));
  return hn::Add(hn::Add(hn::Add(p000, pa), pb), p111);
}

// Byte 3 of each pixel is something else.
HWY_INLINE VU lookUp(const float* lattice, const Tetrahedra& t) {
  const VU components =
      packed(rounded(withHalf(interpolate<0>(lattice, t))), rounded(withHalf(interpolate<1>(lattice, t))),
             rounded(withHalf(interpolate<2>(lattice, t))), rounded(withHalf(interpolate<3>(lattice, t))));
  alignas(16) static constexpr uint8_t kBlueGreenRed[16] = {2,  1, 0, 0x80, 6,  5,  4,  0x80,
                                                            10, 9, 8, 0x80, 14, 13, 12, 0x80};
  return shuffled(components, kBlueGreenRed);
}

// Asks for what comes half a kilobyte further on. The processor would by itself, but starts anew at each page, which
// costs some 3 %. Beyond the end of a frame the request has no effect.
HWY_INLINE void fetchAhead(const uint8_t* pixels) {
  hwy::Prefetch(reinterpret_cast<const void*>(reinterpret_cast<uintptr_t>(pixels) + 512));
}

// Grades a row, `finish` having the last word on each vector of graded pixels and their sources.
template <class Finish>
HWY_INLINE void gradePixels(const LatticeView& lattice, const uint8_t* src, uint8_t* dst, size_t pixels,
                            const Finish& finish) {
  const Axes axes(lattice.latticeSize);
  // While the points of one vector of pixels are on their way, those of the next one are found.
  Tetrahedra tetrahedra[2];
  size_t i = 0;
  if (pixels >= kLanes) {
    VU next = loadPixels(src);
    findTetrahedra(axes, next, tetrahedra[0]);
    for (size_t turn = 0; i + kLanes <= pixels; i += kLanes, turn ^= 1) {
      fetchAhead(src + 4 * i);
      fetchAhead(dst + 4 * i);
      const VU in = next;
      if (i + 2 * kLanes <= pixels) {
        next = loadPixels(src + 4 * (i + kLanes));
        findTetrahedra(axes, next, tetrahedra[turn ^ 1]);
      }
      storePixels(finish(lookUp(lattice.lattice, tetrahedra[turn]), in), dst + 4 * i);
    }
  }
  if (i == pixels) return;
  // What is left takes the same way through a vector of its own.
  alignas(64) uint8_t rest[4 * kLanes] = {};
  std::memcpy(rest, src + 4 * i, 4 * (pixels - i));
  const VU in = loadPixels(rest);
  findTetrahedra(axes, in, tetrahedra[0]);
  storePixels(finish(lookUp(lattice.lattice, tetrahedra[0]), in), rest);
  std::memcpy(dst + 4 * i, rest, 4 * (pixels - i));
}

void gradeRow(const LatticeView& lattice, const BlendTables&, const uint8_t* src, uint8_t* dst, size_t pixels) {
  gradePixels(lattice, src, dst, pixels, [](VU graded, VU in) HWY_ATTR { return multiplyByAlpha(graded, in); });
}

void gradeAndFadeRow(const LatticeView& lattice, const BlendTables&, int32_t sourceWeight, const uint8_t* src,
                     uint8_t* dst, size_t pixels) {
  gradePixels(lattice, src, dst, pixels,
              [=](VU graded, VU in) HWY_ATTR { return fade(in, multiplyByAlpha(graded, in), sourceWeight); });
}

void fadeRow(const BlendTables& blends, int32_t sourceWeight, const uint8_t* src, uint8_t* dst, size_t pixels) {
  size_t i = 0;
  for (; i + kLanes <= pixels; i += kLanes) {
    storePixels(fade(loadPixels(src + 4 * i), loadPixels(dst + 4 * i), sourceWeight), dst + 4 * i);
  }
  plain::fadeRow(blends, sourceWeight, src + 4 * i, dst + 4 * i, pixels - i);
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Lumvane {

HWY_EXPORT(gradeRow);
HWY_EXPORT(gradeAndFadeRow);
HWY_EXPORT(fadeRow);

void gradeRow(const LatticeView& lattice, const BlendTables& blends, const uint8_t* src, uint8_t* dst, size_t pixels) {
  HWY_DYNAMIC_DISPATCH(gradeRow)(lattice, blends, src, dst, pixels);
}

void gradeAndFadeRow(const LatticeView& lattice, const BlendTables& blends, int32_t sourceWeight, const uint8_t* src,
                     uint8_t* dst, size_t pixels) {
  HWY_DYNAMIC_DISPATCH(gradeAndFadeRow)(lattice, blends, sourceWeight, src, dst, pixels);
}

void fadeRow(const BlendTables& blends, int32_t sourceWeight, const uint8_t* src, uint8_t* dst, size_t pixels) {
  HWY_DYNAMIC_DISPATCH(fadeRow)(blends, sourceWeight, src, dst, pixels);
}

}  // namespace Lumvane
#endif
