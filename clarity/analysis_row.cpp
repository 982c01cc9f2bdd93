// The vector forms of valueRow and analysisRow, for every target that this processor may turn out to have.

#include "clarity/clarity_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "clarity/analysis_row.cpp"
#include <hwy/foreach_target.h>  // must come before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
using plain::analysisRow;
using plain::valueRow;
#else

namespace hn = hwy::HWY_NAMESPACE;

// byte / 255, rounded as the division rounds it. The reciprocal comes in two parts. The product of a byte and the upper
// one, of 9 bits, is exact, and that with the lower one is off by too little to change how their sum rounds.
template <class D, class V = hn::Vec<D> >
HWY_INLINE V unitFromByte(D df, hn::Vec<hn::RebindToSigned<D> > byte) {
  const V number = hn::ConvertTo(df, byte);
  return hn::Add(hn::Mul(number, hn::Set(df, 0x1.01p-8f)), hn::Mul(number, hn::Set(df, 0x1.010102p-24f)));
}

void valueRow(const uint8_t* src, float* value, size_t pixels) {
  const hn::ScalableTag<float> df;
  const hn::RebindToSigned<decltype(df)> di;
  const hn::Repartition<uint8_t, decltype(df)> du8;
  const size_t lanes = hn::Lanes(df);
  size_t i = 0;
  for (; i + lanes <= pixels; i += lanes) {
    const auto bgra = hn::LoadU(du8, src + 4 * i);
    // Byte 0 of each pixel is compared with the two above it.
    const auto largest = hn::Max(bgra, hn::Max(hn::BitCast(du8, hn::ShiftRight<8>(hn::BitCast(di, bgra))),
                                               hn::BitCast(du8, hn::ShiftRight<16>(hn::BitCast(di, bgra)))));
    hn::StoreU(unitFromByte(df, hn::And(hn::BitCast(di, largest), hn::Set(di, 0xFF))), df, value + i);
  }
  plain::valueRow(src + 4 * i, value + i, pixels - i);
}

void analysisRow(const uint8_t* src, float saturationFactor, float* hue, float* saturation, float* value,
                 size_t pixels) {
  const hn::ScalableTag<float> df;
  const hn::RebindToSigned<decltype(df)> di;
  const hn::Repartition<uint8_t, decltype(df)> du8;
  using V = hn::Vec<decltype(df)>;
  const auto lowByte = hn::Set(di, 0xFF);
  const V zero = hn::Zero(df), one = hn::Set(df, 1.0f), epsilon = hn::Set(df, 0x1p-23f);
  const V factor = hn::Set(df, saturationFactor);
  const size_t lanes = hn::Lanes(df);
  size_t i = 0;
  for (; i + lanes <= pixels; i += lanes) {
    const auto bgra = hn::BitCast(di, hn::LoadU(du8, src + 4 * i));  // one pixel a lane
    const V b = unitFromByte(df, hn::And(bgra, lowByte));
    const V g = unitFromByte(df, hn::And(hn::ShiftRight<8>(bgra), lowByte));
    const V r = unitFromByte(df, hn::And(hn::ShiftRight<16>(bgra), lowByte));
    const V v = hn::Max(r, hn::Max(g, b));
    const V diff = hn::Sub(v, hn::Min(r, hn::Min(g, b)));
    const V s = hn::Div(diff, hn::Add(v, epsilon));
    const V k = hn::Div(hn::Set(df, 60.0f), hn::Add(diff, epsilon));
    const auto isRed = hn::Eq(v, r), isGreen = hn::Eq(v, g);
    const V across = hn::IfThenElse(isRed, hn::Sub(g, b), hn::IfThenElse(isGreen, hn::Sub(b, r), hn::Sub(r, g)));
    // Adding 0 changes nothing: equal colours differ by a positive 0.
    const V start = hn::IfThenElse(isRed, zero, hn::IfThenElse(isGreen, hn::Set(df, 120.0f), hn::Set(df, 240.0f)));
    const V h = hn::Add(hn::Mul(across, k), start);
    hn::StoreU(hn::Add(h, hn::IfThenElseZero(hn::Lt(h, zero), hn::Set(df, 360.0f))), df, hue + i);
    hn::StoreU(hn::Min(hn::Max(hn::Mul(factor, s), zero), one), df, saturation + i);
    hn::StoreU(v, df, value + i);
  }
  plain::analysisRow(src + 4 * i, saturationFactor, hue + i, saturation + i, value + i, pixels - i);
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Lumvane {

HWY_EXPORT(valueRow);
HWY_EXPORT(analysisRow);

void valueRow(const uint8_t* src, float* value, size_t pixels) { HWY_DYNAMIC_DISPATCH(valueRow)(src, value, pixels); }

void analysisRow(const uint8_t* src, float saturationFactor, float* hue, float* saturation, float* value,
                 size_t pixels) {
  HWY_DYNAMIC_DISPATCH(analysisRow)(src, saturationFactor, hue, saturation, value, pixels);
}

}  // namespace Lumvane
#endif
