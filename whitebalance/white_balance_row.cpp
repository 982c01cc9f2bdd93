// The vector form of whiteBalanceRow, for every target that this processor may turn out to have.

#include "whitebalance/white_balance_row.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "whitebalance/white_balance_row.cpp"
#include <hwy/foreach_target.h>  // must come before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
using plain::whiteBalanceRow;
#else

namespace hn = hwy::HWY_NAMESPACE;

// One 32-bit lane is one pixel.
template <class D, class V = hn::Vec<D> >
HWY_INLINE V balance(D d, const WhiteBalanceGains& gains, V pixels) {
  const hn::RebindToFloat<D> df;
  const hn::RebindToSigned<D> di;
  const auto lowByte = hn::Set(d, 0xFF);
  const auto scaled = [&](V bytes, float gain) HWY_ATTR {
    const auto product = hn::Mul(hn::ConvertTo(df, hn::BitCast(di, bytes)), hn::Set(df, gain));
    const auto held = hn::Min(hn::Max(product, hn::Zero(df)), hn::Set(df, 255.0f));
    return hn::BitCast(d, hn::ConvertTo(di, held));  // truncates
  };
  const V blue = scaled(hn::And(pixels, lowByte), gains.blue);
  const V green = scaled(hn::And(hn::ShiftRight<8>(pixels), lowByte), gains.green);
  const V red = scaled(hn::And(hn::ShiftRight<16>(pixels), lowByte), gains.red);
  const V alpha = hn::AndNot(hn::Set(d, 0x00FFFFFF), pixels);
  return hn::Or(hn::Or(blue, hn::ShiftLeft<8>(green)), hn::Or(hn::ShiftLeft<16>(red), alpha));
}

// Beyond these ends a gain does the same to every byte, and so a product never overflows; a NaN does what 0 does.
float sanitized(float gain) { return std::isnan(gain) ? 0.0f : std::clamp(gain, -1.0f, 256.0f); }

void whiteBalanceRow(const WhiteBalanceGains& gains, const uint8_t* src, uint8_t* dst, size_t pixels) {
  const hn::ScalableTag<uint32_t> d;
  const hn::Repartition<uint8_t, decltype(d)> du8;
  const WhiteBalanceGains tame = {sanitized(gains.blue), sanitized(gains.green), sanitized(gains.red)};
  const size_t lanes = hn::Lanes(d);
  const auto step = [&](const uint8_t* from, uint8_t* to) HWY_ATTR {
    const auto in = hn::BitCast(d, hn::LoadU(du8, from));
    hn::StoreU(hn::BitCast(du8, balance(d, tame, in)), du8, to);
  };
  size_t i = 0;
  for (; i + lanes <= pixels; i += lanes) step(src + 4 * i, dst + 4 * i);
  plain::whiteBalanceRow(gains, src + 4 * i, dst + 4 * i, pixels - i);
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Lumvane {

HWY_EXPORT(whiteBalanceRow);

void whiteBalanceRow(const WhiteBalanceGains& gains, const uint8_t* src, uint8_t* dst, size_t pixels) {
  HWY_DYNAMIC_DISPATCH(whiteBalanceRow)(gains, src, dst, pixels);
}

}  // namespace Lumvane
#endif
