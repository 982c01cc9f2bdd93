// Row kernel from BGRA to YV12: the plain form, which defines the output bytes, and the vector form.

#include "hdr/yv12_kernels.h"

#ifndef HWY_TARGET_INCLUDE  // once; the code after this block is compiled for each instruction set
#define HWY_TARGET_INCLUDE "hdr/yv12_from_rgb.cpp"

namespace Lumvane {
namespace plain {
namespace {

int weighted(const int (&weights)[3], const int (&bgr)[3]) {
  return weights[0] * bgr[0] + weights[1] * bgr[1] + weights[2] * bgr[2];
}

uint8_t lumaOf(const FromRgb& m, const uint8_t* pixel) {
  const int bgr[3] = {pixel[0], pixel[1], pixel[2]};
  return toByte(m.black + roundedShift(weighted(m.y, bgr), kFractionBits));
}

// Converts the pixels from `first` on, which is even.
void restFromRgb(const FromRgb& m, const uint8_t* const (&bgra)[4], const Yv12RowPair& pair, int width, int first) {
  for (int x = first; x < width; ++x) {
    pair.upperLuma[x] = lumaOf(m, bgra[1] + 4 * x);
    pair.lowerLuma[x] = lumaOf(m, bgra[2] + 4 * x);
  }
  for (int x = first / 2; x < (width + 1) / 2; ++x) {
    const int left = std::max(2 * x - 1, 0) * 4, middle = 2 * x * 4, right = std::min(2 * x + 1, width - 1) * 4;
    int bgr[3];
    for (int c = 0; c < 3; ++c) {
      const auto across = [&](const uint8_t* row) { return row[left + c] + 2 * row[middle + c] + row[right + c]; };
      bgr[c] = across(bgra[0]) + 3 * (across(bgra[1]) + across(bgra[2])) + across(bgra[3]);
    }
    pair.v[x] = toByte(kNeutral + roundedShift(weighted(m.cr, bgr), kFractionBits + kDownBits));
    pair.u[x] = toByte(kNeutral + roundedShift(weighted(m.cb, bgr), kFractionBits + kDownBits));
  }
}

void rowPairFromRgb(const FromRgb& m, const uint8_t* const (&bgra)[4], const Yv12RowPair& pair, int width) {
  restFromRgb(m, bgra, pair, width, 0);
}

}  // namespace
}  // namespace plain

const Yv12FromRgbKernels plainYv12FromRgbKernels = {plain::rowPairFromRgb};

}  // namespace Lumvane

#endif

#include <hwy/foreach_target.h>  // must precede all vector code

#include "base/vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {
namespace {

#if LUMVANE_HAVE_VECTORS

// Two coefficients that multiply the 16-bit halves of a lane. They exceed the 15 bits of a 16-bit factor, so they
// are split into high and low bits whose products are shifted and added.
constexpr int kSplit = 9;
struct Coefficients {
  VI low, high;
};
HWY_INLINE Coefficients split(VI ofLower, VI ofUpper) {
  const I d;
  const auto pair = [&](VI lower, VI upper)
                        HWY_ATTR { return hn::Or(hn::And(lower, hn::Set(d, 0xFFFF)), hn::ShiftLeft<16>(upper)); };
  const VI lowBits = hn::Set(d, (1 << kSplit) - 1);
  return {pair(hn::And(ofLower, lowBits), hn::And(ofUpper, lowBits)),
          pair(hn::ShiftRight<kSplit>(ofLower), hn::ShiftRight<kSplit>(ofUpper))};
}
HWY_INLINE VI pairSums(VU values, VI coefficients) {
  const I d;
  const Shorts d16;
  VI second = hn::Zero(d);
  const VI first =
      hn::ReorderWidenMulAccumulate(d, hn::BitCast(d16, values), hn::BitCast(d16, coefficients), hn::Zero(d), second);
  return hn::RearrangeToOddPlusEven(first, second);
}

// Colours, or sums of them: 16 bits each.
struct Colours {
  VU blueRed;  // blue in the lower half of a lane, red in the upper one
  VU green;    // in the lower half
};

HWY_INLINE VU add16(VU a, VU b) {
  const Words d16;
  return hn::BitCast(U(), hn::Add(hn::BitCast(d16, a), hn::BitCast(d16, b)));
}
HWY_INLINE Colours add(const Colours& a, const Colours& b) {
  return {add16(a.blueRed, b.blueRed), add16(a.green, b.green)};
}

HWY_INLINE Colours load(const uint8_t* pixels) {
  const U d;
  const VU bgra = hn::BitCast(d, hn::LoadU(Bytes(), pixels));
  return {hn::And(bgra, hn::Set(d, 0x00FF00FF)), hn::And(hn::ShiftRight<8>(bgra), hn::Set(d, 0xFF))};
}

// The vertical filter, 1 3 3 1.
HWY_INLINE Colours down(const Colours& above, const Colours& upper, const Colours& lower, const Colours& below) {
  const Colours middle = add(upper, lower);
  return add(add(add(above, below), middle), add(middle, middle));
}
HWY_INLINE Colours downFrom(const uint8_t* const (&bgra)[4], size_t x) {
  return down(load(bgra[0] + 4 * x), load(bgra[1] + 4 * x), load(bgra[2] + 4 * x), load(bgra[3] + 4 * x));
}

class LumaRow {
 public:
  explicit LumaRow(const FromRgb& m)
      : blueRed_(split(hn::Set(I(), m.y[0]), hn::Set(I(), m.y[2]))),
        green_(split(hn::Set(I(), m.y[1]), hn::Zero(I()))),
        offset_(hn::Set(I(), (m.black << kFractionBits) + (1 << (kFractionBits - 1)))) {}

  HWY_INLINE void store(const Colours& pixels, uint8_t* luma) const {
    const VI high = hn::Add(pairSums(pixels.blueRed, blueRed_.high), pairSums(pixels.green, green_.high));
    const VI low = hn::Add(pairSums(pixels.blueRed, blueRed_.low), pairSums(pixels.green, green_.low));
    const VI sum = hn::Add(hn::Add(hn::ShiftLeft<kSplit>(high), low), offset_);
    const hn::Rebind<uint8_t, I> bytes;
    hn::StoreU(hn::DemoteTo(bytes, hn::ShiftRight<kFractionBits>(sum)), bytes, luma);
  }

 private:
  Coefficients blueRed_, green_;
  VI offset_;
};

// The coefficients of one chroma plane add up to 0, so those of blue and red alone, applied to the colours minus green,
// suffice.
class ChromaRows {
 public:
  explicit ChromaRows(const FromRgb& m)
      : coefficients_(split(alternating(m.cr[0], m.cb[0]), alternating(m.cr[2], m.cb[2]))),
        half_(hn::Set(I(), 1 << (kBits - 1))) {}

  // Takes vertically filtered colours, and those of the pixels to their left. Every second pixel is a chroma column.
  HWY_INLINE void store(const Colours& pixels, const Colours& left, uint8_t* v, uint8_t* u) const {
    const U d;
    const Colours twice = add(pixels, left);  // pixel and left neighbour; in odd lanes right neighbour and pixel
    const VU blueRed = acrossPair(twice.blueRed), green = acrossPair(twice.green);
    const VU bothGreen = hn::Or(green, hn::ShiftLeft<16>(green));
    const Words d16;
    const VU lessGreen = hn::DupEven(hn::BitCast(d, hn::Sub(hn::BitCast(d16, blueRed), hn::BitCast(d16, bothGreen))));
    const VI sum = hn::Add(
        hn::Add(hn::ShiftLeft<kSplit>(pairSums(lessGreen, coefficients_.high)), pairSums(lessGreen, coefficients_.low)),
        half_);
    // The neutral value is added after the shift: before it, full-range sums would exceed 32 bits.
    const VI chroma = hn::Add(hn::ShiftRight<kBits>(sum), hn::Set(I(), kNeutral));
    const hn::Rebind<uint8_t, I> bytes;
    const hn::Repartition<uint16_t, decltype(bytes)> pairs;
    const hn::Rebind<uint8_t, decltype(pairs)> half;
    const auto vu = hn::BitCast(pairs, hn::DemoteTo(bytes, chroma));
    hn::StoreU(hn::TruncateTo(half, vu), half, v);
    hn::StoreU(hn::TruncateTo(half, hn::ShiftRight<8>(vu)), half, u);
  }

 private:
  static constexpr int kBits = kFractionBits + kDownBits;
  static VI alternating(int even, int odd) { return hn::OddEven(hn::Set(I(), odd), hn::Set(I(), even)); }
  static HWY_INLINE VU acrossPair(VU v) {
    return add16(v, hn::BitCast(U(), hn::ShiftRight<32>(hn::BitCast(hn::Repartition<uint64_t, U>(), v))));
  }

  Coefficients coefficients_;
  VI half_;
};

// Rotates the pixels by one to the right.
HWY_INLINE VU rotated(VU v) {
  const U d;
  constexpr uint32_t last = kLanes - 1;
  return hn::TableLookupLanes(v, hn::IndicesFromVec(d, hn::And(hn::Iota(d, last), hn::Set(d, last))));
}

void rowPairFromRgb(const FromRgb& matrix, const uint8_t* const (&bgra)[4], const Yv12RowPair& pair, int width) {
  const size_t pixels = static_cast<size_t>(width) / 2 * 2;  // complete pairs
  if (pixels < kLanes) return plain::rowPairFromRgb(matrix, bgra, pair, width);
  const LumaRow luma(matrix);
  const ChromaRows chroma(matrix);
  const auto firstLane = hn::FirstN(U(), 1);

  Colours before = {};  // rotated
  for (size_t x = 0; x + kLanes <= pixels; x += kLanes) {
    const Colours upper = load(bgra[1] + 4 * x), lower = load(bgra[2] + 4 * x);
    luma.store(upper, pair.upperLuma + x);
    luma.store(lower, pair.lowerLuma + x);
    const Colours here = down(load(bgra[0] + 4 * x), upper, lower, load(bgra[3] + 4 * x));
    if (x == 0) before = here;  // the first pixel is its own left neighbour
    const Colours turned = {rotated(here.blueRed), rotated(here.green)};
    const Colours left = {hn::IfThenElse(firstLane, before.blueRed, turned.blueRed),
                          hn::IfThenElse(firstLane, before.green, turned.green)};
    before = turned;
    chroma.store(here, left, pair.v + x / 2, pair.u + x / 2);
  }
  if (pixels % kLanes != 0) {  // the last vector overlaps the one before
    const size_t x = pixels - kLanes;
    luma.store(load(bgra[1] + 4 * x), pair.upperLuma + x);
    luma.store(load(bgra[2] + 4 * x), pair.lowerLuma + x);
    chroma.store(downFrom(bgra, x), downFrom(bgra, x - 1), pair.v + x / 2, pair.u + x / 2);
  }
  plain::restFromRgb(matrix, bgra, pair, width, static_cast<int>(pixels));
}

#else
using namespace plain;
#endif

Yv12FromRgbKernels kernels() { return {rowPairFromRgb}; }

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

LUMVANE_DISPATCH(Yv12FromRgbKernels, yv12FromRgbKernels)
