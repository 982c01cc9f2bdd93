// The row kernels by vector, for every target that this processor may turn out to have.
//
// Eight or sixteen pixels at a time take three steps, in which lanes mean different things:
//
// 1. A lane is a pixel. The bytes become a cell and a fraction each, by the division that fills the tables of the
//    lattice, and these become four weights and the places of four lattice points. With the fractions sorted the
//    weights are 1 - max, max - mid, mid - min and min; a tie makes the same differences in whatever order it is
//    broken. The two points in the middle follow from the comparisons of tetrahedralLookup, ties and all.
// 2. A lane is a colour component, a block of four lanes is a pixel. A point is three floats, so four loads of four
//    floats bring a pixel's points; gathers are slower on every processor at hand. Vector i, of four, holds the pixels
//    i, i + 4, ... so that a weight reaches its pixel by a broadcast within the block.
// 3. The components become bytes while they lie in this order, and one shuffle puts the bytes in theirs.

#include "apply/row_kernels.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "apply/row_kernels.cpp"
#include <hwy/foreach_target.h>  // must come before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

using plain::fadeRow;
using plain::gradeAndFadeRow;
using plain::gradeRow;

#else

namespace hn = hwy::HWY_NAMESPACE;

using F = hn::CappedTag<float, 16>;
using I = hn::RebindToSigned<F>;
using U = hn::RebindToUnsigned<F>;
using Bytes = hn::Repartition<uint8_t, F>;
using Words = hn::Repartition<uint16_t, F>;
using VF = hn::Vec<F>;
using VI = hn::Vec<I>;
using VU = hn::Vec<U>;

constexpr size_t kLanes = hn::MaxLanes(F());
constexpr int32_t kStrideZ = 3, kStrideY = kLatticeStride * kStrideZ, kStrideX = kLatticeStride * kStrideY;  // floats
constexpr float kTwo23 = 8388608.0f;  // added to a whole number below it, leaves that in the low bits of the sum

// What does not change along a row.
struct Row {
  const float* points;
  VF step, top;
};

// Where a pixel's points lie, in floats from the first one, and what they weigh.
struct Tetrahedron {
  VI p000, pa, pb, p111;
  VF w0, wa, wb, w1;
};

struct Axis {
  VF cell, fraction;
  VI toUpper;  // from the lower to the upper point of the cell, in floats; 0 at the last point
};

template <int kShift>
HWY_INLINE Axis locate(const Row& row, VU pixels, int32_t stride) {
  const VU byte = hn::And(hn::ShiftRight<kShift>(pixels), hn::Set(U(), 0xFF));
  const VF x = hn::Div(hn::ConvertTo(F(), hn::BitCast(I(), byte)), row.step);
  const VF cell = hn::Floor(x);
  const auto inside = hn::RebindMask(I(), hn::Lt(cell, row.top));
  return {cell, hn::Sub(x, cell), hn::IfThenElseZero(inside, hn::Set(I(), stride))};
}

HWY_INLINE Tetrahedron findTetrahedron(const Row& row, VU pixels) {
  const Axis r = locate<16>(row, pixels, kStrideX);
  const Axis g = locate<8>(row, pixels, kStrideY);
  const Axis b = locate<0>(row, pixels, kStrideZ);
  Tetrahedron t;

  const VF place =
      hn::Add(hn::Add(hn::Mul(r.cell, hn::Set(F(), float{kStrideX})), hn::Mul(g.cell, hn::Set(F(), float{kStrideY}))),
              hn::Add(hn::Mul(b.cell, hn::Set(F(), float{kStrideZ})), hn::Set(F(), kTwo23)));
  t.p000 = hn::And(hn::BitCast(I(), place), hn::Set(I(), 0x7FFFFF));
  t.p111 = hn::Add(t.p000, hn::Add(hn::Add(r.toUpper, g.toUpper), b.toUpper));
  const auto rg = hn::RebindMask(I(), hn::Gt(r.fraction, g.fraction));
  const auto rb = hn::RebindMask(I(), hn::Gt(r.fraction, b.fraction));
  const auto gb = hn::RebindMask(I(), hn::Gt(g.fraction, b.fraction));
  const auto bg = hn::RebindMask(I(), hn::Gt(b.fraction, g.fraction));
  const auto br = hn::RebindMask(I(), hn::Gt(b.fraction, r.fraction));
  // The axis walked first, and the one left for last.
  const VI first =
      hn::IfThenElse(rg, hn::IfThenElse(rb, r.toUpper, b.toUpper), hn::IfThenElse(bg, b.toUpper, g.toUpper));
  const VI last =
      hn::IfThenElse(rg, hn::IfThenElse(gb, b.toUpper, g.toUpper), hn::IfThenElse(br, r.toUpper, b.toUpper));
  t.pa = hn::Add(t.p000, first);
  t.pb = hn::Sub(t.p111, last);

  const VF low = hn::Min(r.fraction, g.fraction), high = hn::Max(r.fraction, g.fraction);
  const VF smallest = hn::Min(low, b.fraction), largest = hn::Max(high, b.fraction);
  const VF middle = hn::Max(low, hn::Min(high, b.fraction));
  t.w0 = hn::Sub(hn::Set(F(), 1.0f), largest);
  t.wa = hn::Sub(largest, middle);
  t.wb = hn::Sub(middle, smallest);
  t.w1 = smallest;
  return t;
}

// The points of the pixels i, i + 4, ... in a block of four floats each; the fourth one belongs to the next point.
template <class D>
HWY_INLINE hn::Vec<D> loadPoints(D d, const float* points, const int32_t* places) {
  if constexpr (hn::MaxLanes(D()) == 4) {
    return hn::LoadU(d, points + places[0]);
  } else {
    const hn::Half<D> half;
    return hn::Combine(d, loadPoints(half, points, places + hn::MaxLanes(half)), loadPoints(half, points, places));
  }
}

// roundToByte, the byte in the low bits of a lane and kTwo23's own bits above it.
//
// Short of half a unit in the last place, 0.5 added in single precision and rounded to the nearest whole number does
// what roundToByte does to everything from 1 on, since no sum then lands on a tie that is not one. Values between 0 and
// 1 are taken to 0.75, for which the same holds, but those up to 2^-54, which double precision does not tell from 0.
HWY_INLINE VU roundToBytes(VF v) {
  const F f;
  const VF held = hn::IfThenElseZero(hn::Lt(v, hn::Set(f, 2147483648.0f)), v);  // not those above, and no NaN
  const VF belowOne = hn::Min(hn::Mul(held, hn::Set(f, 1073741824.0f)), hn::Set(f, 0.75f));
  const VF safe = hn::Min(hn::Max(hn::Max(belowOne, held), hn::Zero(f)), hn::Set(f, 254.5f));
  return hn::BitCast(U(), hn::Add(hn::Add(safe, hn::Set(f, 0.49999997f)), hn::Set(f, kTwo23)));
}

struct Places {
  alignas(64) int32_t p000[kLanes], pa[kLanes], pb[kLanes], p111[kLanes];
};

// Pixels i, i + 4, ... of the block: looked up and rounded.
template <int i>
HWY_INLINE VU interpolate(const Row& row, const Tetrahedron& t, const Places& places) {
  const F f;
  const VF p000 = hn::Mul(hn::Broadcast<i>(t.w0), loadPoints(f, row.points, places.p000 + i));
  const VF pa = hn::Mul(hn::Broadcast<i>(t.wa), loadPoints(f, row.points, places.pa + i));
  const VF pb = hn::Mul(hn::Broadcast<i>(t.wb), loadPoints(f, row.points, places.pb + i));
  const VF p111 = hn::Mul(hn::Broadcast<i>(t.w1), loadPoints(f, row.points, places.p111 + i));
  return roundToBytes(hn::Add(hn::Add(hn::Add(p000, pa), pb), p111));
}

// The bytes of `pixels` looked up, with anything as their byte 3.
HWY_INLINE VU lookUp(const Row& row, VU pixels) {
  const Tetrahedron t = findTetrahedron(row, pixels);
  Places places;
  hn::Store(t.p000, I(), places.p000);
  hn::Store(t.pa, I(), places.pa);
  hn::Store(t.pb, I(), places.pb);
  hn::Store(t.p111, I(), places.p111);
  // Lane c of a block gets component c of the block's four pixels as its bytes.
  const VU first = interpolate<0>(row, t, places);
  const VU second = hn::ShiftLeft<8>(interpolate<1>(row, t, places));
  const VU third = hn::ShiftLeft<16>(interpolate<2>(row, t, places));
  const VU fourth = hn::ShiftLeft<24>(interpolate<3>(row, t, places));
  const VU exponent = hn::Set(U(), 0x4B000000);  // the bits of kTwo23, left in `first` alone
  const VU components = hn::Xor(hn::Xor(hn::Xor(first, exponent), second), hn::Xor(third, fourth));
  alignas(16) static constexpr uint8_t kOrder[16] = {8, 4, 0, 0, 9, 5, 1, 0, 10, 6, 2, 0, 11, 7, 3, 0};
  const auto order = hn::LoadDup128(Bytes(), kOrder);
  return hn::BitCast(U(), hn::TableLookupBytes(hn::BitCast(Bytes(), components), order));
}

template <class Pair>
HWY_INLINE VU onBytes(VU a, VU b, const Pair& pair) {
  const Words w;
  const auto low = hn::Set(w, 0xFF);
  const auto wideA = hn::BitCast(w, a), wideB = hn::BitCast(w, b);
  const auto even = pair(hn::And(wideA, low), hn::And(wideB, low));
  const auto odd = pair(hn::ShiftRight<8>(wideA), hn::ShiftRight<8>(wideB));
  return hn::BitCast(U(), hn::Or(even, hn::ShiftLeft<8>(odd)));
}

// The colour bytes of `graded` times the alpha of `pixels` / 255, to the nearest; byte 3 comes from `pixels`.
HWY_INLINE VU multiplyByAlpha(VU graded, VU pixels) {
  const VU alphaBits = hn::Set(U(), 0xFF000000);
  const VU alphas = hn::And(pixels, alphaBits);
  if (HWY_LIKELY(hn::AllTrue(U(), hn::Eq(alphas, alphaBits)))) return hn::Or(hn::AndNot(alphaBits, graded), alphas);
  alignas(16) static constexpr uint8_t kAlphas[16] = {3, 3, 3, 3, 7, 7, 7, 7, 11, 11, 11, 11, 15, 15, 15, 15};
  const VU spread =
      hn::BitCast(U(), hn::TableLookupBytes(hn::BitCast(Bytes(), pixels), hn::LoadDup128(Bytes(), kAlphas)));
  // Byte 3 becomes alpha * 255 / 255. The nearest whole number to x / 255 is (y + y / 256) / 256 with y = x + 128.
  return onBytes(hn::Or(graded, alphaBits), spread, [](auto colour, auto alpha) HWY_ATTR {
    const auto y = hn::Add(hn::Mul(colour, alpha), hn::Set(Words(), 128));
    return hn::ShiftRight<8>(hn::Add(y, hn::ShiftRight<8>(y)));
  });
}

// (pixels * t + graded * (255 - t)) / 255, truncated. x / 255 is (x + 1 + x / 256) / 256 for all x up to 255 * 255.
HWY_INLINE VU fade(VU graded, VU pixels, int32_t t) {
  const Words w;
  const auto keep = hn::Set(w, static_cast<uint16_t>(t));
  const auto take = hn::Set(w, static_cast<uint16_t>(255 - t));
  return onBytes(pixels, graded, [&](auto source, auto result) HWY_ATTR {
    const auto x = hn::Add(hn::Mul(source, keep), hn::Mul(result, take));
    return hn::ShiftRight<8>(hn::Add(hn::Add(x, hn::Set(w, 1)), hn::ShiftRight<8>(x)));
  });
}

HWY_INLINE VU load(const uint8_t* pixels) { return hn::BitCast(U(), hn::LoadU(Bytes(), pixels)); }
HWY_INLINE void store(VU pixels, uint8_t* to) { hn::StoreU(hn::BitCast(Bytes(), pixels), Bytes(), to); }

// Takes a row through `step` by vectors. What is left over takes the same way through a vector of its own.
template <class Step>
HWY_INLINE void forRow(const uint8_t* src, uint8_t* dst, size_t pixels, const Step& step) {
  size_t i = 0;
  for (; i + kLanes <= pixels; i += kLanes) step(src + 4 * i, dst + 4 * i);
  if (i == pixels) return;
  alignas(64) uint8_t in[4 * kLanes] = {}, out[4 * kLanes];
  const size_t left = 4 * (pixels - i);
  std::memcpy(in, src + 4 * i, left);
  std::memcpy(out, dst + 4 * i, left);
  step(in, out);
  std::memcpy(dst + 4 * i, out, left);
}

HWY_INLINE Row rowOf(const LatticeView& lattice) {
  const auto top = static_cast<float>(lattice.latticeSize - 1);
  return {lattice.lattice, hn::Set(F(), 255.0f / top), hn::Set(F(), top)};
}

void gradeRow(const LatticeView& lattice, const BlendTables&, const uint8_t* src, uint8_t* dst, size_t pixels) {
  const Row row = rowOf(lattice);
  forRow(src, dst, pixels, [&](const uint8_t* from, uint8_t* to) HWY_ATTR {
    const VU in = load(from);
    store(multiplyByAlpha(lookUp(row, in), in), to);
  });
}

void gradeAndFadeRow(const LatticeView& lattice, const BlendTables&, int32_t t, const uint8_t* src, uint8_t* dst,
                     size_t pixels) {
  const Row row = rowOf(lattice);
  forRow(src, dst, pixels, [&](const uint8_t* from, uint8_t* to) HWY_ATTR {
    const VU in = load(from);
    store(fade(multiplyByAlpha(lookUp(row, in), in), in, t), to);
  });
}

void fadeRow(const BlendTables&, int32_t t, const uint8_t* src, uint8_t* dst, size_t pixels) {
  forRow(src, dst, pixels,
         [&](const uint8_t* from, uint8_t* to) HWY_ATTR { store(fade(load(to), load(from), t), to); });
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

void gradeAndFadeRow(const LatticeView& lattice, const BlendTables& blends, int32_t t, const uint8_t* src, uint8_t* dst,
                     size_t pixels) {
  HWY_DYNAMIC_DISPATCH(gradeAndFadeRow)(lattice, blends, t, src, dst, pixels);
}

void fadeRow(const BlendTables& blends, int32_t t, const uint8_t* src, uint8_t* dst, size_t pixels) {
  HWY_DYNAMIC_DISPATCH(fadeRow)(blends, t, src, dst, pixels);
}

}  // namespace Lumvane
#endif
