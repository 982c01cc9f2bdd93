#pragma once

#include <cstddef>
#include <cstdint>

namespace Lumvane {

/// Points per axis that a lattice has room for, and the stride of each axis in points, whatever its size.
inline constexpr int32_t kLatticeStride = 65;

/// What a frame reads of a colour table; owns nothing.
struct LatticeView {
  int32_t latticeSize;    ///< N, points per axis, 1 to 65
  const float* fraction;  ///< 256: for a byte, its position inside its lattice cell
  const int32_t* cell;    ///< 256: for a byte, the lattice index at the lower end of its cell
  const float* lattice;  ///< [65][65][65][3]: red, green, blue index; then red, green, blue of the colour, 0.0 to 255.0

  /// The three components at the given red, green and blue index.
  const float* point(int32_t x, int32_t y, int32_t z) const {
    return lattice + ((static_cast<ptrdiff_t>(x) * kLatticeStride + y) * kLatticeStride + z) * 3;
  }
};

}  // namespace Lumvane
