// The row kernel of white balance: the plain form, which defines the output bytes, and the vector form.

#include "whitebalance/white_balance_kernel.h"

#ifndef HWY_TARGET_INCLUDE  // once; the code after this block is compiled for each instruction set
#define HWY_TARGET_INCLUDE "whitebalance/white_balance_kernel.cpp"

#include <algorithm>
#include <cmath>

namespace Lumvane {

WhiteBalanceGains whiteBalanceGains(float temperature, float tint) {
  const float base = tint * 0.5f + 1.0f;
  return {base - temperature, 1.0f - tint, base + temperature};
}

namespace plain {
namespace {

uint8_t scaled(uint8_t byte, float gain) {
  const float product = static_cast<float>(byte) * gain;
  if (!(product > 0.0f)) return 0;  // NaN too
  return product < 255.0f ? static_cast<uint8_t>(product) : 255;
}

}  // namespace

void whiteBalanceRow(const WhiteBalanceGains& gains, const uint8_t* src, uint8_t* dst, size_t pixels) {
  for (size_t i = 0; i < pixels; ++i, src += 4, dst += 4) {
    dst[0] = scaled(src[0], gains.blue);
    dst[1] = scaled(src[1], gains.green);
    dst[2] = scaled(src[2], gains.red);
    dst[3] = src[3];
  }
}

}  // namespace plain

const WhiteBalanceKernels plainWhiteBalanceKernels = {plain::whiteBalanceRow};

}  // namespace Lumvane

#endif

#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>  // must precede all vector code

#include "base/vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {
namespace {

#if LUMVANE_HAVE_VECTORS

// Frames of this size and above do not stay in a cache until they are read: they are written with non-temporal stores,
// which avoid reading each line of the destination first.
constexpr size_t kStreamedBytes = size_t{16} << 20;

// A gain beyond these limits has the same effect on every byte as the limit, so clamping it prevents overflow. NaN acts
// like 0.
HWY_INLINE float sanitized(float gain) { return std::isnan(gain) ? 0.0f : std::clamp(gain, -1.0f, 256.0f); }

// Pixel i of each block of four, one component per lane, times the gains.
template <uint8_t i>
HWY_INLINE VF scaled(VU pixels, VF gains) {
  alignas(16) static constexpr uint8_t kPixel[16] = {4 * i,     0x80, 0x80, 0x80, 4 * i + 1, 0x80, 0x80, 0x80,
                                                     4 * i + 2, 0x80, 0x80, 0x80, 4 * i + 3, 0x80, 0x80, 0x80};
  return hn::Mul(hn::ConvertTo(F(), hn::BitCast(I(), shuffled(pixels, kPixel))), gains);
}

void whiteBalanceRow(const WhiteBalanceGains& gains, const uint8_t* src, uint8_t* dst, size_t pixels) {
  alignas(16) const float four[4] = {sanitized(gains.blue), sanitized(gains.green), sanitized(gains.red), 1.0f};
  const VF factors = hn::LoadDup128(F(), four);
  const auto balanced = [&](size_t i) HWY_ATTR {
    const VU in = loadPixels(src + 4 * i);
    return packed(truncated(scaled<0>(in, factors)), truncated(scaled<1>(in, factors)),
                  truncated(scaled<2>(in, factors)), truncated(scaled<3>(in, factors)));
  };

  size_t i = 0;
  if (4 * pixels >= kStreamedBytes && src != dst && reinterpret_cast<uintptr_t>(dst) % 4 == 0) {
    constexpr size_t kAlignment = 4 * kLanes;
    i = (kAlignment - reinterpret_cast<uintptr_t>(dst) % kAlignment) % kAlignment / 4;
    plain::whiteBalanceRow(gains, src, dst, i);
    for (; i + kLanes <= pixels; i += kLanes) {
      hn::Stream(hn::BitCast(Bytes(), balanced(i)), Bytes(), dst + 4 * i);
    }
    hwy::FlushStream();
  }
  for (; i + kLanes <= pixels; i += kLanes) storePixels(balanced(i), dst + 4 * i);
  plain::whiteBalanceRow(gains, src + 4 * i, dst + 4 * i, pixels - i);
}

#else
using namespace plain;
#endif

WhiteBalanceKernels kernels() { return {whiteBalanceRow}; }

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

LUMVANE_DISPATCH(WhiteBalanceKernels, whiteBalanceKernels)
