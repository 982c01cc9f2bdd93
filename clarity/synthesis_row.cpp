// The vector form of synthesisRow, for every target that this processor may turn out to have.

#include "clarity/clarity_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "clarity/synthesis_row.cpp"
#include <hwy/foreach_target.h>  // must come before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
using plain::synthesisRow;
#else

namespace hn = hwy::HWY_NAMESPACE;

// The whole part of numbers far from the ends of 32 bits. On x86, ConvertTo minds those ends too, which takes a third of
// the time of the whole row.
template <class DI, class V>
HWY_INLINE hn::Vec<DI> wholePart([[maybe_unused]] DI di, V v) {
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3
  return {_mm512_cvttps_epi32(v.raw)};
#elif HWY_TARGET == HWY_AVX2
  return {_mm256_cvttps_epi32(v.raw)};
#elif HWY_TARGET == HWY_SSE4 || HWY_TARGET == HWY_SSSE3
  return {_mm_cvttps_epi32(v.raw)};
#else
  return hn::ConvertTo(di, v);
#endif
}

// Puts the bytes of each lane, which are the value, the lowest and the middle colour and alpha, where the sector of the
// hue wants them. There are two cycles, one for the even and one for the odd sectors, and the bytes 0, 1 and 2 of a
// pixel come from three neighbours in one of them.
template <class D>
HWY_INLINE hn::Vec<D> arranged(D du8, hn::Vec<D> lanes, hn::Vec<D> sectors) {
  alignas(16) static constexpr uint8_t kToLane[16] = {0, 0, 0, 128, 4, 4, 4, 128, 8, 8, 8, 128, 12, 12, 12, 128};
  alignas(16) static constexpr uint8_t kFirst[16] = {0, 5, 1, 6, 2, 7};
  alignas(16) static constexpr uint8_t kAlong[16] = {0, 1, 2, 10, 0, 1, 2, 10, 0, 1, 2, 10, 0, 1, 2, 10};
  alignas(16) static constexpr uint8_t kCycles[16] = {1, 2, 0, 1, 2, 1, 0, 2, 1, 0, 3};
  alignas(16) static constexpr uint8_t kLane[16] = {0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8, 8, 12, 12, 12, 12};
  const auto block = [&](const uint8_t* bytes) HWY_ATTR { return hn::LoadDup128(du8, bytes); };
  const auto sector = hn::TableLookupBytesOr0(sectors, block(kToLane));
  const auto place = hn::Add(hn::TableLookupBytes(block(kFirst), sector), block(kAlong));
  return hn::TableLookupBytes(lanes, hn::Add(hn::TableLookupBytes(block(kCycles), place), block(kLane)));
}

void synthesisRow(const float* hue, const float* saturation, const float* value, const uint8_t* src, uint8_t* dst,
                  size_t pixels) {
  const hn::ScalableTag<float> df;
  const hn::RebindToSigned<decltype(df)> di;
  const hn::Repartition<uint8_t, decltype(df)> du8;
  using V = hn::Vec<decltype(df)>;
  const V one = hn::Set(df, 1.0f), turn = hn::Set(df, 6.0f);
  const auto toByte = [&](V colour) HWY_ATTR {
    // From 0 to 1 as it is, the colour need not be held there.
    return wholePart(di, hn::Add(hn::Mul(colour, hn::Set(df, 255.0f)), hn::Set(df, 0.5f)));
  };
  const size_t lanes = hn::Lanes(df);
  size_t i = 0;
  for (; i + lanes <= pixels; i += lanes) {
    const V s = hn::LoadU(df, saturation + i);
    const V v = hn::LoadU(df, value + i);
    const V hexagon = hn::Mul(hn::LoadU(df, hue + i), hn::Set(df, 0.016666668f));
    const V x = hn::IfThenElse(hn::Ge(hexagon, turn), hn::Sub(hexagon, turn), hexagon);
    const auto sector = wholePart(di, x);
    const V f = hn::Sub(x, hn::ConvertTo(df, sector));
    const auto isOdd = hn::RebindMask(df, hn::TestBit(sector, hn::Set(di, 1)));
    const V share = hn::IfThenElse(isOdd, f, hn::Sub(one, f));
    // Without saturation these two are the value, as it should be.
    const V lowest = hn::Mul(hn::Sub(one, s), v);
    const V middle = hn::Mul(hn::Sub(one, hn::Mul(share, s)), v);
    const auto alpha = hn::AndNot(hn::Set(di, 0x00FFFFFF), hn::BitCast(di, hn::LoadU(du8, src + 4 * i)));
    const auto colours =
        hn::Or(hn::Or(toByte(v), hn::ShiftLeft<8>(toByte(lowest))), hn::Or(hn::ShiftLeft<16>(toByte(middle)), alpha));
    hn::StoreU(arranged(du8, hn::BitCast(du8, colours), hn::BitCast(du8, sector)), du8, dst + 4 * i);
  }
  plain::synthesisRow(hue + i, saturation + i, value + i, src + 4 * i, dst + 4 * i, pixels - i);
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Lumvane {

HWY_EXPORT(synthesisRow);

void synthesisRow(const float* hue, const float* saturation, const float* value, const uint8_t* src, uint8_t* dst,
                  size_t pixels) {
  HWY_DYNAMIC_DISPATCH(synthesisRow)(hue, saturation, value, src, dst, pixels);
}

}  // namespace Lumvane
#endif
