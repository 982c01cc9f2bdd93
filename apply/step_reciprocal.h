#pragma once

#include <bit>
#include <cstdint>

namespace Lumvane {

/// 1 / step in two parts, where step is the distance of two lattice points in byte values, 255 / (N - 1) in single
/// precision. For every byte v and every N, v * high + v * low, each operation rounded to single precision, is what the
/// division v / step gives: `high` has 16 bits, so that its product is exact, and `low` has what is left.
struct StepReciprocal {
  float high, low;

  explicit StepReciprocal(int32_t latticeSize) {
    const double reciprocal = 1.0 / static_cast<double>(255.0f / static_cast<float>(latticeSize - 1));
    high = std::bit_cast<float>(std::bit_cast<uint32_t>(static_cast<float>(reciprocal)) & 0xFFFFFF00u);
    low = static_cast<float>(reciprocal - static_cast<double>(high));
  }
};

}  // namespace Lumvane
