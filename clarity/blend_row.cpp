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

void blendRow(const float* value, float valueWeight, const float* enhanced, float enhancedWeight, float* out,
              size_t samples) {
  const hn::ScalableTag<float> df;
  const hn::Half<decltype(df)> dh;
  const hn::Repartition<double, decltype(df)> dd;
  using V = hn::Vec<decltype(df)>;
  const auto firstWeight = hn::Set(dd, double{valueWeight}), secondWeight = hn::Set(dd, double{enhancedWeight});
  const auto mixed = [&](auto first, auto second) HWY_ATTR {
    return hn::DemoteTo(
        dh, hn::Add(hn::Mul(hn::PromoteTo(dd, first), firstWeight), hn::Mul(hn::PromoteTo(dd, second), secondWeight)));
  };
  const size_t lanes = hn::Lanes(df);
  size_t i = 0;
  for (; i + lanes <= samples; i += lanes) {
    const V e = hn::Max(hn::Min(hn::LoadU(df, enhanced + i), hn::Set(df, 1.0f)), hn::Zero(df));
    const auto lower = mixed(hn::LoadU(dh, value + i), hn::LowerHalf(dh, e));
    const auto upper = mixed(hn::LoadU(dh, value + i + lanes / 2), hn::UpperHalf(dh, e));
    // What is mixed lies from 0 to 1, and so does the mix: the weights' sum is off from 1 by less than a float can tell.
    hn::StoreU(lower, dh, out + i);
    hn::StoreU(upper, dh, out + i + lanes / 2);
  }
  plain::blendRow(value + i, valueWeight, enhanced + i, enhancedWeight, out + i, samples - i);
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Lumvane {

HWY_EXPORT(blendRow);

void blendRow(const float* value, float valueWeight, const float* enhanced, float enhancedWeight, float* out,
              size_t samples) {
  HWY_DYNAMIC_DISPATCH(blendRow)(value, valueWeight, enhanced, enhancedWeight, out, samples);
}

}  // namespace Lumvane
#endif
