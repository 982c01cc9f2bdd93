#pragma once

#include <cstddef>
#include <cstdint>

namespace Lumvane {

/// The factors for bytes 0, 1 and 2 of a pixel. Any value, including infinities and NaN.
struct WhiteBalanceGains {
  float blue, green, red;
};

/// Returns the gains for a temperature and a tint: see WhiteBalanceFun.
WhiteBalanceGains whiteBalanceGains(float temperature, float tint);

/// Multiplies the colour bytes of BGRA pixels by the gains, in single precision, and truncates: 3 * 0.5 gives 1.
/// Products out of range are clamped, NaN gives 0. Byte 3 is copied. dst may be src.
using WhiteBalanceRow = void(const WhiteBalanceGains& gains, const uint8_t* src, uint8_t* dst, size_t pixels);

struct WhiteBalanceKernels {
  WhiteBalanceRow* row;
};

/// The plain form, one byte at a time: the reference for all others.
extern const WhiteBalanceKernels plainWhiteBalanceKernels;

/// Returns the fastest kernel for this processor.
WhiteBalanceKernels whiteBalanceKernels();

}  // namespace Lumvane
