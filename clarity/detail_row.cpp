// The vector form of detailRow, for every target that this processor may turn out to have.

#include "clarity/clarity_rows.h"
#include "clarity/exponential_table.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "clarity/detail_row.cpp"
#include <hwy/foreach_target.h>  // must come before highway.h
#include <hwy/highway.h>

#ifndef LUMVANE_CLARITY_EXPONENTIALS  // once for all targets
#define LUMVANE_CLARITY_EXPONENTIALS
namespace Lumvane {
static constexpr ExponentialTable kExponentials;
}
#endif

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
using plain::detailRow;
#else

namespace hn = hwy::HWY_NAMESPACE;

// exp(r - step / 64) for r within 1 / 128 around 0, rounded to single precision. With one entry of the table and a
// polynomial it is off by little more than the last bit of double precision before it is rounded, and that is less than
// what any exponential that occurs lies away from where its rounding changes.
template <class DI, class V>
HWY_INLINE auto exponentialNear(DI d64, hn::VFromD<hn::Rebind<int32_t, DI> > step, V r32) {
  const hn::RebindToFloat<DI> dd;
  // The Taylor series after the first two terms, its fourth-order and fifth-order terms spread over the lower ones as
  // Chebyshev polynomials do it: least error over the whole range.
  constexpr double kSquare = 1.0 / (128.0 * 128.0);
  const auto c2 = hn::Set(dd, 1.0 / 2 - kSquare * kSquare / (8 * 720.0));
  const auto c3 = hn::Set(dd, 1.0 / 6 - kSquare * kSquare * 5 / (16 * 5040.0));
  const auto c4 = hn::Set(dd, 1.0 / 24 + kSquare / 720);
  const auto c5 = hn::Set(dd, 1.0 / 120 + kSquare * 5 / (4 * 5040.0));
  const auto base = hn::GatherIndex(dd, kExponentials.data(), hn::PromoteTo(d64, step));
  const auto r = hn::PromoteTo(dd, r32);
  const auto rr = hn::Mul(r, r);
  auto sum = hn::Add(hn::Mul(c5, r), c4);
  sum = hn::Add(hn::Mul(sum, r), c3);
  sum = hn::Add(hn::Mul(sum, r), c2);
  sum = hn::Add(hn::Mul(sum, rr), r);
  return hn::DemoteTo(hn::Rebind<float, DI>(), hn::Add(hn::Mul(base, sum), base));
}

// exp(-x) for x from 0; from 32 on something as small as makes no difference to a detail.
template <class D, class V = hn::Vec<D> >
HWY_INLINE V exponentialOfMinus(D df, V x) {
  const hn::RebindToSigned<D> di;
  const hn::Repartition<int64_t, D> d64;
  constexpr float kLargest = static_cast<float>(ExponentialTable::kSize - 1) / ExponentialTable::kStepsPerUnit;
  // In a float of this size the last bit stands for one step, so that adding it rounds to whole steps.
  const V shift = hn::Set(df, static_cast<float>((1 << 23) / ExponentialTable::kStepsPerUnit));
  const V held = hn::Min(x, hn::Set(df, kLargest));
  const V shifted = hn::Add(held, shift);
  const V r = hn::Sub(hn::Sub(shifted, shift), held);  // exact
  const auto step = hn::And(hn::BitCast(di, shifted), hn::Set(di, ExponentialTable::kSize - 1));
  const hn::Half<D> dh;
  const hn::Half<decltype(di)> dih;
  const auto lower = exponentialNear(d64, hn::LowerHalf(dih, step), hn::LowerHalf(dh, r));
  const auto upper = exponentialNear(d64, hn::UpperHalf(dih, step), hn::UpperHalf(dh, r));
  return hn::Combine(df, upper, lower);
}

void detailRow(const float* fine, const float* coarse, float coefficient, float gain, const float* base, float* out,
               size_t samples) {
  const hn::ScalableTag<float> df;
  using V = hn::Vec<decltype(df)>;
  const size_t lanes = hn::Lanes(df);
  size_t i = 0;
  for (; i + lanes <= samples; i += lanes) {
    const V d = hn::Sub(hn::LoadU(df, fine + i), hn::LoadU(df, coarse + i));
    const V w = exponentialOfMinus(df, hn::Mul(hn::Mul(d, d), hn::Set(df, coefficient)));
    const V raised = hn::Add(hn::Mul(hn::Mul(d, hn::Set(df, gain)), w), d);
    hn::StoreU(hn::Add(hn::LoadU(df, base + i), raised), df, out + i);
  }
  plain::detailRow(fine + i, coarse + i, coefficient, gain, base + i, out + i, samples - i);
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Lumvane {

HWY_EXPORT(detailRow);

void detailRow(const float* fine, const float* coarse, float coefficient, float gain, const float* base, float* out,
               size_t samples) {
  HWY_DYNAMIC_DISPATCH(detailRow)(fine, coarse, coefficient, gain, base, out, samples);
}

}  // namespace Lumvane
#endif
