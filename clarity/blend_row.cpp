// The vector form of blendRow, for every target that this processor may turn out to have.

#include "clarity/clarity_rows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "clarity/blend_row.cpp"
#include <hwy/foreach_target.h>  // must come before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
using plain::blendRow;
#else

namespace hn = hwy::HWY_NAMESPACE;

void blendRow(const float* value, float valueWeight, const float* coarse, const float* detail, float sumWeight,
              float* out, size_t samples) {
  const hn::ScalableTag<float> df;
  const hn::Half<decltype(df)> dh;
  const hn::Repartition<double, decltype(df)> dd;
  using V = hn::Vec<decltype(df)>;
  const auto firstWeight = hn::Set(dd, double{valueWeight}), secondWeight = hn::Set(dd, double{sumWeight});
  const V zero = hn::Zero(df), one = hn::Set(df, 1.0f);
  const auto held = [&](V v) HWY_ATTR { return hn::Max(hn::Min(v, one), zero); };
  const auto mixed = [&](auto first, auto second) HWY_ATTR {
    return hn::DemoteTo(
        dh, hn::Add(hn::Mul(hn::PromoteTo(dd, first), firstWeight), hn::Mul(hn::PromoteTo(dd, second), secondWeight)));
  };
  const size_t lanes = hn::Lanes(df);
  size_t i = 0;
  for (; i + lanes <= samples; i += lanes) {
    const V v = hn::LoadU(df, value + i);
    const V sum = held(hn::Add(hn::LoadU(df, coarse + i), hn::LoadU(df, detail + i)));
    const auto lower = mixed(hn::LowerHalf(dh, v), hn::LowerHalf(dh, sum));
    const auto upper = mixed(hn::UpperHalf(dh, v), hn::UpperHalf(dh, sum));
    hn::StoreU(held(hn::Combine(df, upper, lower)), df, out + i);
  }
  plain::blendRow(value + i, valueWeight, coarse + i, detail + i, sumWeight, out + i, samples - i);
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Lumvane {

HWY_EXPORT(blendRow);

void blendRow(const float* value, float valueWeight, const float* coarse, const float* detail, float sumWeight,
              float* out, size_t samples) {
  HWY_DYNAMIC_DISPATCH(blendRow)(value, valueWeight, coarse, detail, sumWeight, out, samples);
}

}  // namespace Lumvane
#endif
