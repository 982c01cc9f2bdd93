// The vector form of detailRow, for every target that this processor may turn out to have.

#include "clarity/clarity_rows.h"
#include "clarity/exponential_table.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "clarity/detail_row.cpp"
#include <hwy/foreach_target.h>  // must come before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR
using plain::detailRow;
#else

namespace hn = hwy::HWY_NAMESPACE;

// exp(r - step / 256) for r within 1 / 512 around 0, rounded to single precision. One entry of the table and a polynomial
// make it, off by little more than the last bit of double precision before it is rounded. That is less than what lies
// between any exponential that occurs and the nearest place where its rounding changes.
template <class D64, class V32>
HWY_INLINE hn::VFromD<hn::Rebind<float, D64> > exponentialNear(D64 d64, hn::VFromD<hn::Rebind<int32_t, D64> > step,
                                                               V32 offset) {
  const hn::RebindToFloat<D64> dd;
  // The Taylor series, with most of its fifth-order term in the third-order one, where the two differ least.
  const auto c4 = hn::Set(dd, 1.0 / 24);
  const auto c3 = hn::Set(dd, 1.0 / 6 + 0.8695 / (512.0 * 512.0) / 120);
  const auto c2 = hn::Set(dd, 1.0 / 2);
  const auto r = hn::PromoteTo(dd, offset);
  const auto higher = hn::Add(hn::Mul(hn::Add(hn::Mul(c4, r), c3), r), c2);
  const auto growth = hn::Add(hn::Mul(higher, hn::Mul(r, r)), r);
  const auto base = hn::GatherIndex(dd, kExponentials.data(), hn::PromoteTo(d64, step));
  return hn::DemoteTo(hn::Rebind<float, D64>(), hn::Add(hn::Mul(base, growth), base));
}

// exp(-x) for x from 0 to 32. Other numbers give something wrong, but do no harm.
template <class D, class V = hn::Vec<D> >
HWY_INLINE V exponentialOfMinus(D df, V x) {
  const hn::RebindToSigned<D> di;
  const hn::Half<D> dh;
  const hn::Half<decltype(di)> dih;
  const hn::Repartition<int64_t, D> d64;
  // In a float of this size the last bit stands for one step, so that adding it rounds to whole steps.
  const V shift = hn::Set(df, static_cast<float>((1 << 23) / ExponentialTable::kStepsPerUnit));
  const V shifted = hn::Add(x, shift);
  const V offset = hn::Sub(hn::Sub(shifted, shift), x);  // exact
  const auto step = hn::And(hn::BitCast(di, shifted), hn::Set(di, ExponentialTable::kSize - 1));
  const auto lower = exponentialNear(d64, hn::LowerHalf(dih, step), hn::LowerHalf(dh, offset));
  const auto upper = exponentialNear(d64, hn::UpperHalf(dih, step), hn::UpperHalf(dh, offset));
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
