#pragma once

#include <cstdint>

namespace bench {

/// A clarity frame of packed rows by the plain rows and OpenCV alone, on one thread: what clarity is without vector
/// instructions of its own. Both sides of the frame are at least 65.
void plainClarity(const uint8_t* src, uint8_t* dst, int width, int height, int saturation, int intensity);

}  // namespace bench
