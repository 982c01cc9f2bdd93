#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace Lumvane {

/// A colour value as a byte, the way LUT grading does it: 0.5 is added ahead of a conversion that rounds to nearest
/// with ties to even, in double precision. So 10.2 and 10.9 both give 11, a whole even value stays, and a whole odd
/// value goes up by one. Values beyond either end saturate, but those from 2^31 on, and a NaN, give 0.
inline uint8_t roundToByte(float v) {
  if (!(v < 2147483648.0f)) return 0;  // x86 converts what a 32-bit integer cannot hold to a negative number
  const double sum = std::max(static_cast<double>(v), -1.0) + 0.5;
  return static_cast<uint8_t>(std::clamp(std::llrint(sum), 0LL, 255LL));
}

/// A colour value as a byte, the way the HDR path does it: half is added, what is above 255 becomes 255, the rest is
/// truncated toward zero, and the low 8 bits of that are kept. There is no lower clamp: -1.5 and below wraps. What a
/// 64-bit integer cannot hold, and a NaN, give 0.
inline uint8_t truncToByte(float v) {
  const double sum = std::min(static_cast<double>(v) + 0.5, 255.0);
  if (!(sum >= -9223372036854775808.0)) return 0;
  return static_cast<uint8_t>(static_cast<uint64_t>(static_cast<int64_t>(sum)) & 255);
}

}  // namespace Lumvane
