// Row kernels that raise the details of a plane: the plain forms, which define the bits, and the vector forms.

#include "clarity/detail_kernels.h"

#ifndef HWY_TARGET_INCLUDE  // once; the code after this block is compiled for each instruction set
#define HWY_TARGET_INCLUDE "clarity/detail_kernels.cpp"

#include <algorithm>

#include "clarity/exponential_table.h"

namespace Lumvane {
namespace plain {
namespace {

// exp(x) for x from -32 to 0, correctly rounded to single precision: computed in double precision from the nearest
// table entry and a Taylor series for the remainder, at most 1 / 512. C libraries differ here: glibc 2.36's
// single-precision function is sometimes off in the last bit, other libraries' double-precision one by more than its
// last bit.
float exponential(float x) {
  constexpr double kSteps = ExponentialTable::kStepsPerUnit;
  const int step = static_cast<int>(std::min(double{ExponentialTable::kSize - 1}, -double{x} * kSteps + 0.5));
  const double r = double{x} + step / kSteps;  // exact
  const double growth = r + r * r * (1.0 / 2 + r * (1.0 / 6 + r * (1.0 / 24 + r / 120)));
  const double base = kExponentials.data()[step];
  return static_cast<float>(base + base * growth);
}

}  // namespace

void detailRow(const float* fine, const float* coarse, float coefficient, float gain, const float* base, float* out,
               size_t samples) {
  for (size_t i = 0; i < samples; ++i) {
    const float d = fine[i] - coarse[i];
    const float w = exponential(-(d * d * coefficient));
    out[i] = base[i] + ((d * gain) * w + d);
  }
}

void blendRow(const float* value, float valueWeight, const float* enhanced, float enhancedWeight, float* out,
              size_t samples) {
  for (size_t i = 0; i < samples; ++i) {
    const double share = double{std::clamp(enhanced[i], 0.0f, 1.0f)} * double{enhancedWeight};
    out[i] = std::clamp(static_cast<float>(double{value[i]} * double{valueWeight} + share), 0.0f, 1.0f);
  }
}

}  // namespace plain

const DetailKernels plainDetailKernels = {plain::detailRow, plain::blendRow};

}  // namespace Lumvane

#endif

#include <hwy/foreach_target.h>  // must precede all vector code

#include "base/vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {
namespace {

#if LUMVANE_HAVE_VECTORS

// exp(r - step / 256) for r within 1 / 512 of 0, rounded to single precision. Before rounding, one table entry and the
// Taylor series to the fourth order give it to a few units in the last place of double precision. No exponential that
// occurs lies that close to a rounding boundary.
HWY_INLINE hn::Vec<HalfF> exponentialNear(hn::Vec<HalfI> step, hn::Vec<HalfF> offset) {
  const Doubles d;
  const auto c4 = hn::Set(d, 1.0 / 24);
  const auto c3 = hn::Set(d, 1.0 / 6);
  const auto c2 = hn::Set(d, 1.0 / 2);
  const auto r = hn::PromoteTo(d, offset);
  const auto higher = hn::Add(hn::Mul(hn::Add(hn::Mul(c4, r), c3), r), c2);
  const auto growth = hn::Add(hn::Mul(higher, hn::Mul(r, r)), r);
  const auto base = hn::GatherIndex(d, kExponentials.data(), hn::PromoteTo(hn::RebindToSigned<Doubles>(), step));
  return hn::DemoteTo(HalfF(), hn::Add(hn::Mul(base, growth), base));
}

// exp(-x) for x from 0 to 32. Other values give wrong results, but no access outside the table.
HWY_INLINE VF exponentialOfMinus(VF x) {
  // The last bit of a float of this magnitude is one step, so adding it rounds to whole steps.
  const VF shift = hn::Set(F(), static_cast<float>((1 << 23) / ExponentialTable::kStepsPerUnit));
  const VF shifted = hn::Add(x, shift);
  const VF offset = hn::Sub(hn::Sub(shifted, shift), x);  // exact
  const VI step = hn::And(hn::BitCast(I(), shifted), hn::Set(I(), ExponentialTable::kSize - 1));
  const auto lower = exponentialNear(hn::LowerHalf(HalfI(), step), hn::LowerHalf(HalfF(), offset));
  const auto upper = exponentialNear(hn::UpperHalf(HalfI(), step), hn::UpperHalf(HalfF(), offset));
  return hn::Combine(F(), upper, lower);
}

void detailRow(const float* fine, const float* coarse, float coefficient, float gain, const float* base, float* out,
               size_t samples) {
  size_t i = 0;
  for (; i + kLanes <= samples; i += kLanes) {
    const VF d = hn::Sub(hn::LoadU(F(), fine + i), hn::LoadU(F(), coarse + i));
    const VF w = exponentialOfMinus(hn::Mul(hn::Mul(d, d), hn::Set(F(), coefficient)));
    const VF raised = hn::Add(hn::Mul(hn::Mul(d, hn::Set(F(), gain)), w), d);
    hn::StoreU(hn::Add(hn::LoadU(F(), base + i), raised), F(), out + i);
  }
  plain::detailRow(fine + i, coarse + i, coefficient, gain, base + i, out + i, samples - i);
}

void blendRow(const float* value, float valueWeight, const float* enhanced, float enhancedWeight, float* out,
              size_t samples) {
  const HalfF dh;
  const Doubles dd;
  const auto firstWeight = hn::Set(dd, double{valueWeight}), secondWeight = hn::Set(dd, double{enhancedWeight});
  const auto mixed = [&](auto first, auto second) HWY_ATTR {
    return hn::DemoteTo(
        dh, hn::Add(hn::Mul(hn::PromoteTo(dd, first), firstWeight), hn::Mul(hn::PromoteTo(dd, second), secondWeight)));
  };
  size_t i = 0;
  for (; i + kLanes <= samples; i += kLanes) {
    const VF e = hn::Max(hn::Min(hn::LoadU(F(), enhanced + i), hn::Set(F(), 1.0f)), hn::Zero(F()));
    const auto lower = mixed(hn::LoadU(dh, value + i), hn::LowerHalf(dh, e));
    const auto upper = mixed(hn::LoadU(dh, value + i + kLanes / 2), hn::UpperHalf(dh, e));
    // Both inputs are from 0 to 1, and so is the result: the weights' sum differs from 1 by less than a float can
    // represent.
    hn::StoreU(lower, dh, out + i);
    hn::StoreU(upper, dh, out + i + kLanes / 2);
  }
  plain::blendRow(value + i, valueWeight, enhanced + i, enhancedWeight, out + i, samples - i);
}

#else
using namespace plain;
#endif

DetailKernels kernels() { return {detailRow, blendRow}; }

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

LUMVANE_DISPATCH(DetailKernels, detailKernels)
