// Vector form of tetrahedralLookup, in two steps, in which lanes have different meanings:
//
// 1. A lane is a pixel: findTetrahedra finds four points and their weights. With the three fractions sorted the weights
//    are 1 - max, max - mid, mid - min and min; ties give the same differences in any order. The two middle points are
//    chosen by the comparisons of tetrahedralLookup, ties included: an infinite point matters even at weight 0
//    (infinity * 0 is NaN).
// 2. A lane is a colour component, a block of four lanes is a pixel. A point is three floats, so it is loaded as four;
//    gathers are slower on every processor measured. Vector i of four holds the pixels i, i + 4, ..., so that a
//    broadcast within the block gives each pixel its weight.

#if defined(LUMVANE_APPLY_LATTICE_LOOKUP_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LUMVANE_APPLY_LATTICE_LOOKUP_INL_H
#undef LUMVANE_APPLY_LATTICE_LOOKUP_INL_H
#else
#define LUMVANE_APPLY_LATTICE_LOOKUP_INL_H
#endif

#include "apply/lattice.h"
#include "base/vectors-inl.h"

#if LUMVANE_HAVE_VECTORS

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {

// Floats from a lattice point to its neighbours along blue, green and red.
constexpr int32_t kStrideZ = 3, kStrideY = kLatticeStride * kStrideZ, kStrideX = kLatticeStride * kStrideY;

// Constants of a row.
struct Axes {
  VF reciprocalHigh, reciprocalLow;  // StepReciprocal
  VF top;                            // the index of the last point

  explicit HWY_INLINE Axes(int32_t latticeSize) {
    const StepReciprocal reciprocal(latticeSize);
    reciprocalHigh = hn::Set(F(), reciprocal.high);
    reciprocalLow = hn::Set(F(), reciprocal.low);
    top = hn::Set(F(), static_cast<float>(latticeSize - 1));
  }
};

// The four points and weights of each pixel of a vector; in memory, because the points are loaded one at a time.
struct Tetrahedra {
  // Offsets in floats from the first point of the lattice.
  alignas(64) uint32_t p000[kLanes], pa[kLanes], pb[kLanes], p111[kLanes];
  alignas(64) float w0[kLanes], wa[kLanes], wb[kLanes], w1[kLanes];
};

struct Coordinate {
  VF cell, fraction;
  VI toUpper;  // floats from the lower to the upper point of the cell; 0 at the last point
};

template <uint8_t byte>
HWY_INLINE Coordinate locate(const Axes& axes, VU pixels, int32_t stride) {
  alignas(16) static constexpr uint8_t kByte[16] = {byte,     0x80, 0x80, 0x80, byte + 4,  0x80, 0x80, 0x80,
                                                    byte + 8, 0x80, 0x80, 0x80, byte + 12, 0x80, 0x80, 0x80};
  const VF v = hn::ConvertTo(F(), hn::BitCast(I(), shuffled(pixels, kByte)));
  const VF x = hn::Add(hn::Mul(v, axes.reciprocalHigh), hn::Mul(v, axes.reciprocalLow));
  const VF cell = hn::Floor(x);
  const auto inside = hn::RebindMask(I(), hn::Lt(cell, axes.top));
  return {cell, hn::Sub(x, cell), hn::IfThenElseZero(inside, hn::Set(I(), stride))};
}

HWY_INLINE void findTetrahedra(const Axes& axes, VU pixels, Tetrahedra& out) {
  const Coordinate r = locate<2>(axes, pixels, kStrideX);
  const Coordinate g = locate<1>(axes, pixels, kStrideY);
  const Coordinate b = locate<0>(axes, pixels, kStrideZ);

  // Integers below 2^24, so exact.
  const VF redGreen =
      hn::Add(hn::Mul(r.cell, hn::Set(F(), float{kStrideX})), hn::Mul(g.cell, hn::Set(F(), float{kStrideY})));
  const VI p000 = truncated(hn::Add(redGreen, hn::Mul(b.cell, hn::Set(F(), float{kStrideZ}))));
  const VI p111 = hn::Add(p000, hn::Add(hn::Add(r.toUpper, g.toUpper), b.toUpper));

  const auto rg = hn::RebindMask(I(), hn::Gt(r.fraction, g.fraction));
  const auto rb = hn::RebindMask(I(), hn::Gt(r.fraction, b.fraction));
  const auto gb = hn::RebindMask(I(), hn::Gt(g.fraction, b.fraction));
  const auto bg = hn::RebindMask(I(), hn::Gt(b.fraction, g.fraction));
  const auto br = hn::RebindMask(I(), hn::Gt(b.fraction, r.fraction));
  const VI first =
      hn::IfThenElse(rg, hn::IfThenElse(rb, r.toUpper, b.toUpper), hn::IfThenElse(bg, b.toUpper, g.toUpper));
  const VI last =
      hn::IfThenElse(rg, hn::IfThenElse(gb, b.toUpper, g.toUpper), hn::IfThenElse(br, r.toUpper, b.toUpper));

  const VF low = hn::Min(r.fraction, g.fraction), high = hn::Max(r.fraction, g.fraction);
  const VF smallest = hn::Min(low, b.fraction), largest = hn::Max(high, b.fraction);
  const VF middle = hn::Max(low, hn::Min(high, b.fraction));

  hn::Store(hn::BitCast(U(), p000), U(), out.p000);
  hn::Store(hn::BitCast(U(), hn::Add(p000, first)), U(), out.pa);
  hn::Store(hn::BitCast(U(), hn::Sub(p111, last)), U(), out.pb);
  hn::Store(hn::BitCast(U(), p111), U(), out.p111);
  hn::Store(hn::Sub(hn::Set(F(), 1.0f), largest), F(), out.w0);
  hn::Store(hn::Sub(largest, middle), F(), out.wa);
  hn::Store(hn::Sub(middle, smallest), F(), out.wb);
  hn::Store(smallest, F(), out.w1);
}

// Interpolates the pixels i, i + 4, ...; lane 3 of each block is undefined.
template <int i>
HWY_INLINE VF interpolate(const float* lattice, const Tetrahedra& t) {
  const F f;
  const VF p000 = hn::Mul(hn::Broadcast<i>(hn::Load(f, t.w0)), gatherPoints(lattice, t.p000 + i));
  const VF pa = hn::Mul(hn::Broadcast<i>(hn::Load(f, t.wa)), gatherPoints(lattice, t.pa + i));
  const VF pb = hn::Mul(hn::Broadcast<i>(hn::Load(f, t.wb)), gatherPoints(lattice, t.pb + i));
  const VF p111 = hn::Mul(hn::Broadcast<i>(hn::Load(f, t.w1)), gatherPoints(lattice, t.p111 + i));
  return hn::Add(hn::Add(hn::Add(p000, pa), pb), p111);
}

// Reorders bytes from red, green, blue to BGRA with byte 3 zero.
HWY_INLINE VU toBgr(VU components) {
  alignas(16) static constexpr uint8_t kBlueGreenRed[16] = {2,  1, 0, 0x80, 6,  5,  4,  0x80,
                                                            10, 9, 8, 0x80, 14, 13, 12, 0x80};
  return shuffled(components, kBlueGreenRed);
}

// Interpolates vectors of pixels: row.find(v, tetrahedra) finds the points and weights of vector v, row.toBytes
// converts components to integers, which are then clamped to 0 to 255, and row.store(v, bytes) receives them: red,
// green, blue and an undefined byte for each pixel.
template <class Row>
HWY_INLINE void interpolateVectors(const float* points, size_t vectors, const Row& row) {
  if (vectors == 0) return;
  // The points of the next vector are computed while those of the current one are being loaded.
  Tetrahedra tetrahedra[2];
  row.find(0, tetrahedra[0]);
  for (size_t v = 0; v < vectors; ++v) {
    if (v + 1 < vectors) row.find(v + 1, tetrahedra[(v + 1) % 2]);
    const Tetrahedra& t = tetrahedra[v % 2];
    row.store(v, packed(row.toBytes(interpolate<0>(points, t)), row.toBytes(interpolate<1>(points, t)),
                        row.toBytes(interpolate<2>(points, t)), row.toBytes(interpolate<3>(points, t))));
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

#endif  // LUMVANE_HAVE_VECTORS
#endif  // include guard
