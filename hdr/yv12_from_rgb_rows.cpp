// The vector form of rowPairFromRgb.

#include "hdr/yv12_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "hdr/yv12_from_rgb_rows.cpp"
#include <hwy/foreach_target.h>  // must come before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

void rowPairFromRgb(const FromRgb& matrix, const uint8_t* const (&bgra)[4], const Yv12RowPair& pair, int width) {
  plain::rowPairFromRgb(matrix, bgra, pair, width);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using DU32 = hn::ScalableTag<uint32_t>;  // a lane is a pixel
using VU32 = hn::Vec<DU32>;
using DI32 = hn::RebindToSigned<DU32>;
using VI32 = hn::Vec<DI32>;
using DU64 = hn::Repartition<uint64_t, DU32>;
using DU16 = hn::Repartition<uint16_t, DU32>;
using DI16 = hn::Repartition<int16_t, DU32>;
using DU8 = hn::Repartition<uint8_t, DU32>;

// Two coefficients that multiply the 16-bit halves of a lane. They have more than the 15 bits that a 16-bit product
// takes, and so are split into high bits and low bits whose products are shifted and added.
constexpr int kSplit = 9;
struct Coefficients {
  VI32 low, high;
};
HWY_INLINE Coefficients split(VI32 ofLower, VI32 ofUpper) {
  const DI32 d;
  const auto pair = [&](VI32 lower, VI32 upper)
                        HWY_ATTR { return hn::Or(hn::And(lower, hn::Set(d, 0xFFFF)), hn::ShiftLeft<16>(upper)); };
  const VI32 lowBits = hn::Set(d, (1 << kSplit) - 1);
  return {pair(hn::And(ofLower, lowBits), hn::And(ofUpper, lowBits)),
          pair(hn::ShiftRight<kSplit>(ofLower), hn::ShiftRight<kSplit>(ofUpper))};
}
HWY_INLINE VI32 pairSums(VU32 values, VI32 coefficients) {
  const DI32 d;
  const DI16 d16;
  VI32 second = hn::Zero(d);
  const VI32 first =
      hn::ReorderWidenMulAccumulate(d, hn::BitCast(d16, values), hn::BitCast(d16, coefficients), hn::Zero(d), second);
  return hn::RearrangeToOddPlusEven(first, second);
}

// Colours, or sums of them: 16 bits each.
struct Colours {
  VU32 blueRed;  // blue in the lower half of a lane, red in the upper one
  VU32 green;    // in the lower half
};

HWY_INLINE VU32 add16(VU32 a, VU32 b) {
  const DU16 d16;
  return hn::BitCast(DU32(), hn::Add(hn::BitCast(d16, a), hn::BitCast(d16, b)));
}
HWY_INLINE Colours add(const Colours& a, const Colours& b) {
  return {add16(a.blueRed, b.blueRed), add16(a.green, b.green)};
}

HWY_INLINE Colours load(const uint8_t* pixels) {
  const DU32 d;
  const VU32 bgra = hn::BitCast(d, hn::LoadU(DU8(), pixels));
  return {hn::And(bgra, hn::Set(d, 0x00FF00FF)), hn::And(hn::ShiftRight<8>(bgra), hn::Set(d, 0xFF))};
}

// 1 3 3 1 down.
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
      : blueRed_(split(hn::Set(DI32(), m.y[0]), hn::Set(DI32(), m.y[2]))),
        green_(split(hn::Set(DI32(), m.y[1]), hn::Zero(DI32()))),
        offset_(hn::Set(DI32(), (m.black << kFractionBits) + (1 << (kFractionBits - 1)))) {}

  HWY_INLINE void store(const Colours& pixels, uint8_t* luma) const {
    const VI32 high = hn::Add(pairSums(pixels.blueRed, blueRed_.high), pairSums(pixels.green, green_.high));
    const VI32 low = hn::Add(pairSums(pixels.blueRed, blueRed_.low), pairSums(pixels.green, green_.low));
    const VI32 sum = hn::Add(hn::Add(hn::ShiftLeft<kSplit>(high), low), offset_);
    const hn::Rebind<uint8_t, DI32> bytes;
    hn::StoreU(hn::DemoteTo(bytes, hn::ShiftRight<kFractionBits>(sum)), bytes, luma);
  }

 private:
  Coefficients blueRed_, green_;
  VI32 offset_;
};

// As the coefficients of one chroma add up to 0, those of blue and red alone take the colours less green.
class ChromaRows {
 public:
  explicit ChromaRows(const FromRgb& m)
      : coefficients_(split(alternating(m.cr[0], m.cb[0]), alternating(m.cr[2], m.cb[2]))),
        half_(hn::Set(DI32(), 1 << (kBits - 1))) {}

  // From colours after the filter down, and the same of the pixels to their left: every second pixel is a chroma column.
  HWY_INLINE void store(const Colours& pixels, const Colours& left, uint8_t* v, uint8_t* u) const {
    const DU32 d;
    const Colours twice = add(pixels, left);  // pixel and left neighbour; in odd lanes right neighbour and pixel
    const VU32 blueRed = acrossPair(twice.blueRed), green = acrossPair(twice.green);
    const VU32 bothGreen = hn::Or(green, hn::ShiftLeft<16>(green));
    const DU16 d16;
    const VU32 lessGreen = hn::DupEven(hn::BitCast(d, hn::Sub(hn::BitCast(d16, blueRed), hn::BitCast(d16, bothGreen))));
    const VI32 sum = hn::Add(
        hn::Add(hn::ShiftLeft<kSplit>(pairSums(lessGreen, coefficients_.high)), pairSums(lessGreen, coefficients_.low)),
        half_);
    // The neutral value is added behind the shift: ahead of it, it would take full-range sums out of 32 bits.
    const VI32 chroma = hn::Add(hn::ShiftRight<kBits>(sum), hn::Set(DI32(), kNeutral));
    const hn::Rebind<uint8_t, DI32> bytes;
    const hn::Repartition<uint16_t, decltype(bytes)> pairs;
    const hn::Rebind<uint8_t, decltype(pairs)> half;
    const auto vu = hn::BitCast(pairs, hn::DemoteTo(bytes, chroma));
    hn::StoreU(hn::TruncateTo(half, vu), half, v);
    hn::StoreU(hn::TruncateTo(half, hn::ShiftRight<8>(vu)), half, u);
  }

 private:
  static constexpr int kBits = kFractionBits + kDownBits;
  static VI32 alternating(int even, int odd) { return hn::OddEven(hn::Set(DI32(), odd), hn::Set(DI32(), even)); }
  static HWY_INLINE VU32 acrossPair(VU32 v) {
    return add16(v, hn::BitCast(DU32(), hn::ShiftRight<32>(hn::BitCast(DU64(), v))));
  }

  Coefficients coefficients_;
  VI32 half_;
};

// Moves every pixel to the right, the last one to the front.
HWY_INLINE VU32 rotated(VU32 v) {
  const DU32 d;
  const auto last = static_cast<uint32_t>(hn::Lanes(d)) - 1;
  return hn::TableLookupLanes(v, hn::IndicesFromVec(d, hn::And(hn::Iota(d, last), hn::Set(d, last))));
}

void rowPairFromRgb(const FromRgb& matrix, const uint8_t* const (&bgra)[4], const Yv12RowPair& pair, int width) {
  const DU32 d;
  const size_t lanes = hn::Lanes(d);
  const size_t pixels = static_cast<size_t>(width) / 2 * 2;  // those in pairs
  if (pixels < lanes) return plain::rowPairFromRgb(matrix, bgra, pair, width);
  const LumaRow luma(matrix);
  const ChromaRows chroma(matrix);
  const auto firstLane = hn::FirstN(d, 1);

  Colours before = {};  // rotated
  for (size_t x = 0; x + lanes <= pixels; x += lanes) {
    const Colours upper = load(bgra[1] + 4 * x), lower = load(bgra[2] + 4 * x);
    luma.store(upper, pair.upperLuma + x);
    luma.store(lower, pair.lowerLuma + x);
    const Colours here = down(load(bgra[0] + 4 * x), upper, lower, load(bgra[3] + 4 * x));
    if (x == 0) before = here;  // left of the first pixel it is repeated
    const Colours turned = {rotated(here.blueRed), rotated(here.green)};
    const Colours left = {hn::IfThenElse(firstLane, before.blueRed, turned.blueRed),
                          hn::IfThenElse(firstLane, before.green, turned.green)};
    before = turned;
    chroma.store(here, left, pair.v + x / 2, pair.u + x / 2);
  }
  if (pixels % lanes != 0) {  // the last vector overlaps the one before
    const size_t x = pixels - lanes;
    luma.store(load(bgra[1] + 4 * x), pair.upperLuma + x);
    luma.store(load(bgra[2] + 4 * x), pair.lowerLuma + x);
    chroma.store(downFrom(bgra, x), downFrom(bgra, x - 1), pair.v + x / 2, pair.u + x / 2);
  }
  plain::rowPairFromRgb(matrix, bgra, pair, width, static_cast<int>(pixels));
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Lumvane {

HWY_EXPORT(rowPairFromRgb);

void rowPairFromRgb(const FromRgb& matrix, const uint8_t* const (&bgra)[4], const Yv12RowPair& pair, int width) {
  HWY_DYNAMIC_DISPATCH(rowPairFromRgb)(matrix, bgra, pair, width);
}

}  // namespace Lumvane
#endif
