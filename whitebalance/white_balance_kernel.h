#pragma once

#include <cstddef>
#include <cstdint>

namespace Lumvane {

/// What the bytes 0, 1 and 2 of a pixel are multiplied by. Any value, also infinities and NaN.
struct WhiteBalanceGains {
  float blue, green, red;
};

/// The gains of a temperature and a tint: see WhiteBalanceFun.
WhiteBalanceGains whiteBalanceGains(float temperature, float tint);

/// Multiplies the colour bytes of BGRA pixels by the gains, in single precision, and truncates: 3 * 0.5 gives 1.
/// Products beyond 0 to 255 count as the nearer end, a NaN as 0. Byte 3 is copied. dst may be src.
using WhiteBalanceRow = void(const WhiteBalanceGains& gains, const uint8_t* src, uint8_t* dst, size_t pixels);

/// One byte at a time: what the others are held against.
extern WhiteBalanceRow* const plainWhiteBalanceRow;

/// The fastest on this processor.
WhiteBalanceRow* whiteBalanceKernel();

}  // namespace Lumvane
