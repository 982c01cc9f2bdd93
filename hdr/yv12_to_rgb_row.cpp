// The vector form of rowToRgb.

#include <algorithm>

#include "hdr/yv12_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "hdr/yv12_to_rgb_row.cpp"
#include <hwy/foreach_target.h>  // must come before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

void rowToRgb(const ToRgb& matrix, const Yv12Row& row, uint8_t* bgra, int width) {
  plain::rowToRgb(matrix, row, bgra, width);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using D16 = hn::ScalableTag<int16_t>;  // a lane is a chroma column, or one of its two pixels
using V16 = hn::Vec<D16>;
using D32 = hn::Repartition<int32_t, D16>;
using V32 = hn::Vec<D32>;
using DU16 = hn::RebindToUnsigned<D16>;
using DU32 = hn::RebindToUnsigned<D32>;
using DU8 = hn::Repartition<uint8_t, D16>;

// Coefficients have up to 22 bits, the factors of a 16-bit product 15. A coefficient is split into its high bits, which
// multiply the value shifted left, and its low bits, which multiply the value as it is: exact, in one instruction.
template <int kShift>
V16 splitCoefficient(int coefficient) {
  const auto low = static_cast<uint32_t>(coefficient) & ((1u << kShift) - 1);
  const auto high = static_cast<uint32_t>(coefficient >> kShift);
  return hn::BitCast(D16(), hn::Set(DU32(), low | high << 16));
}

constexpr int kLumaShift = 7;    // 255 << 7 is the largest shifted value
constexpr int kChromaShift = 5;  // -1024 << 5

struct Coefficients {
  explicit Coefficients(const ToRgb& m)
      : grey(splitCoefficient<kLumaShift>(m.luma << kUpBits)),
        redOfCr(splitCoefficient<kChromaShift>(m.redOfCr)),
        greenOfCr(splitCoefficient<kChromaShift>(m.greenOfCr)),
        greenOfCb(splitCoefficient<kChromaShift>(m.greenOfCb)),
        blueOfCb(splitCoefficient<kChromaShift>(m.blueOfCb)),
        offset(hn::Set(D32(), (1 << (kFractionBits + kUpBits - 1)) - ((m.black * m.luma) << kUpBits))) {}
  V16 grey, redOfCr, greenOfCr, greenOfCb, blueOfCb;
  V32 offset;  // what black takes away, and half for rounding
};

// Sums of neighbouring products.
HWY_INLINE V32 pairSums(V16 a, V16 b) {
  const D32 d;
  V32 second = hn::Zero(d);
  const V32 first = hn::ReorderWidenMulAccumulate(d, a, b, hn::Zero(d), second);
  return hn::RearrangeToOddPlusEven(first, second);
}

// The 16-bit colours of the pixels whose Y, Cb and Cr are in the halves of the lanes, next to the shifted values.
HWY_INLINE void matrixed(const Coefficients& m, V16 y, V16 cb, V16 cr, V32& blue, V32& green, V32& red) {
  const V32 grey = hn::Add(pairSums(y, m.grey), m.offset);
  constexpr int kBits = kFractionBits + kUpBits;
  blue = hn::ShiftRight<kBits>(hn::Add(grey, pairSums(cb, m.blueOfCb)));
  green = hn::ShiftRight<kBits>(hn::Add(hn::Add(grey, pairSums(cb, m.greenOfCb)), pairSums(cr, m.greenOfCr)));
  red = hn::ShiftRight<kBits>(hn::Add(grey, pairSums(cr, m.redOfCr)));
}

struct Pixels {
  V16 blueGreen, redAlpha;  // two bytes in each lane
};

HWY_INLINE V16 packed(V32 lower, V32 upper) {
  const D16 d;
  const V16 both = hn::ReorderDemote2To(d, lower, upper);
  return hn::Min(hn::Max(both, hn::Zero(d)), hn::Set(d, 255));
}

// The pixels of one parity. Interleaving and packing within blocks of 128 bits cancel each other.
HWY_INLINE Pixels toPixels(const Coefficients& m, V16 y, V16 cb, V16 cr) {
  const D16 d;
  const V16 yHigh = hn::ShiftLeft<kLumaShift>(y);
  const V16 cbHigh = hn::ShiftLeft<kChromaShift>(cb);
  const V16 crHigh = hn::ShiftLeft<kChromaShift>(cr);
  V32 blue[2], green[2], red[2];
  matrixed(m, hn::InterleaveLower(d, y, yHigh), hn::InterleaveLower(d, cb, cbHigh), hn::InterleaveLower(d, cr, crHigh),
           blue[0], green[0], red[0]);
  matrixed(m, hn::InterleaveUpper(d, y, yHigh), hn::InterleaveUpper(d, cb, cbHigh), hn::InterleaveUpper(d, cr, crHigh),
           blue[1], green[1], red[1]);
  return {hn::Or(packed(blue[0], blue[1]), hn::ShiftLeft<8>(packed(green[0], green[1]))),
          hn::Or(packed(red[0], red[1]), hn::Set(d, static_cast<int16_t>(0xFF00)))};
}

// Chroma at the columns from `column` on, in eighths of a row's share, that is in quarters, less the neutral value.
HWY_INLINE V16 acrossRows(const uint8_t* nearRow, const uint8_t* farRow, int column) {
  const D16 d;
  const hn::Rebind<uint8_t, D16> dBytes;
  const V16 nearest = hn::PromoteTo(d, hn::LoadU(dBytes, nearRow + column));
  const V16 far = hn::PromoteTo(d, hn::LoadU(dBytes, farRow + column));
  return hn::Sub(hn::Add(hn::Add(nearest, far), hn::Add(nearest, nearest)), hn::Set(d, kNeutral << (kUpBits - 1)));
}

// Blocks of 128 bits are dealt four pixels at a time so that what interleaving within blocks makes of them comes out in
// the order of the pixels.
class Dealer {
 public:
  Dealer() {
    const size_t lanes = hn::Lanes(DU32()), blocks = lanes / 4;
    for (size_t i = 0; i < lanes; ++i) order_[i] = static_cast<uint32_t>(i % 4 * blocks + i / 4);
  }
  template <class V>
  HWY_INLINE V operator()(V v) const {
    const DU32 d;
    return hn::BitCast(hn::DFromV<V>(), hn::TableLookupLanes(hn::BitCast(d, v), hn::SetTableIndices(d, order_)));
  }

 private:
  HWY_ALIGN uint32_t order_[hn::MaxLanes(DU32())];
};

void rowToRgb(const ToRgb& matrix, const Yv12Row& row, uint8_t* bgra, int width) {
  const D16 d;
  const DU16 du16;
  const DU32 du32;
  const DU8 du8;
  const int columns = (width + 1) / 2;
  const int lanes = static_cast<int>(hn::Lanes(d));
  if (width < 2 * lanes) return plain::rowToRgb(matrix, row, bgra, width);
  const Coefficients m(matrix);
  const Dealer deal;

  // 2 * lanes pixels from `column` on; `next` are the chroma columns one further on.
  const auto convert = [&](int column, V16 cr, V16 nextCr, V16 cb, V16 nextCb) HWY_ATTR {
    const auto luma = hn::BitCast(du16, deal(hn::LoadU(du8, row.luma + 2 * column)));
    cr = deal(cr), nextCr = deal(nextCr), cb = deal(cb), nextCb = deal(nextCb);
    const Pixels even =
        toPixels(m, hn::BitCast(d, hn::And(luma, hn::Set(du16, 0xFF))), hn::Add(cb, cb), hn::Add(cr, cr));
    const Pixels odd = toPixels(m, hn::BitCast(d, hn::ShiftRight<8>(luma)), hn::Add(cb, nextCb), hn::Add(cr, nextCr));
    const auto evenLower = hn::BitCast(du32, hn::InterleaveLower(d, even.blueGreen, even.redAlpha));
    const auto evenUpper = hn::BitCast(du32, hn::InterleaveUpper(d, even.blueGreen, even.redAlpha));
    const auto oddLower = hn::BitCast(du32, hn::InterleaveLower(d, odd.blueGreen, odd.redAlpha));
    const auto oddUpper = hn::BitCast(du32, hn::InterleaveUpper(d, odd.blueGreen, odd.redAlpha));
    uint8_t* out = bgra + 8 * column;
    const size_t step = 2 * static_cast<size_t>(lanes);
    hn::StoreU(hn::BitCast(du8, hn::InterleaveLower(du32, evenLower, oddLower)), du8, out);
    hn::StoreU(hn::BitCast(du8, hn::InterleaveUpper(du32, evenLower, oddLower)), du8, out + step);
    hn::StoreU(hn::BitCast(du8, hn::InterleaveLower(du32, evenUpper, oddUpper)), du8, out + 2 * step);
    hn::StoreU(hn::BitCast(du8, hn::InterleaveUpper(du32, evenUpper, oddUpper)), du8, out + 3 * step);
  };

  int column = 0;
  for (; column + lanes < columns; column += lanes) {
    convert(column, acrossRows(row.nearV, row.farV, column), acrossRows(row.nearV, row.farV, column + 1),
            acrossRows(row.nearU, row.farU, column), acrossRows(row.nearU, row.farU, column + 1));
  }
  // The last whole vector of pixel pairs, part of which may be done already. Behind the last column that one is repeated.
  column = width / 2 - lanes;
  HWY_ALIGN int16_t cr[hn::MaxLanes(D16()) + 1], cb[hn::MaxLanes(D16()) + 1];
  hn::Store(acrossRows(row.nearV, row.farV, column), d, cr);
  hn::Store(acrossRows(row.nearU, row.farU, column), d, cb);
  const auto atColumn = [&](const uint8_t* nearRow, const uint8_t* farRow, int at) {
    return static_cast<int16_t>(3 * nearRow[at] + farRow[at] - (kNeutral << (kUpBits - 1)));
  };
  cr[lanes] = atColumn(row.nearV, row.farV, columns - 1);
  cb[lanes] = atColumn(row.nearU, row.farU, columns - 1);
  convert(column, hn::Load(d, cr), hn::LoadU(d, cr + 1), hn::Load(d, cb), hn::LoadU(d, cb + 1));
  plain::rowToRgb(matrix, row, bgra, width, width / 2 * 2);
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Lumvane {

HWY_EXPORT(rowToRgb);

void rowToRgb(const ToRgb& matrix, const Yv12Row& row, uint8_t* bgra, int width) {
  HWY_DYNAMIC_DISPATCH(rowToRgb)(matrix, row, bgra, width);
}

}  // namespace Lumvane
#endif
