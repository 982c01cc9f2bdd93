// The colour lattices of LUTs, and the positions of byte values in them.
#pragma once

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace Lumvane {

/// The capacity of a lattice in points per axis, and the stride of its axes in points, whatever its size.
inline constexpr int32_t kLatticeStride = 65;

/// A non-owning view of a colour table, with all that frame processing reads.
struct LatticeView {
  int32_t latticeSize;    ///< N, points per axis, 1 to 65
  const float* fraction;  ///< [256]: the position of a byte value inside its lattice cell
  const int32_t* cell;    ///< [256]: the lattice index at the lower end of the cell of a byte value
  const float* lattice;   ///< [65][65][65][3]: red, green, blue index; then red, green, blue of the colour, 0 to 255

  /// Returns the three components at the given red, green and blue index.
  const float* point(int32_t x, int32_t y, int32_t z) const {
    return lattice + ((static_cast<ptrdiff_t>(x) * kLatticeStride + y) * kLatticeStride + z) * 3;
  }
};

/// A lattice of the HDR path: [red][green] points to a row of 65 points along blue, three floats each (red, green,
/// blue). All rows exist, whatever the size of the LUT.
using HdrLattice = float***;

/// The same as LatticeView, for an HdrLattice.
struct HdrLatticeView {
  int32_t latticeSize;
  const float* fraction;
  const int32_t* cell;
  HdrLattice lattice;

  const float* point(int32_t x, int32_t y, int32_t z) const { return lattice[x][y] + z * 3; }
};

/// Computes the position of each byte value on a lattice axis of `latticeSize` points, 2 or more, over which the 256
/// values are spread evenly: the index of the point at the lower end of its cell, and the position inside the cell.
/// Single precision.
inline void fillInterpolationTables(int32_t latticeSize, float (&fraction)[256], int32_t (&cell)[256]) {
  const float step = 255.0f / static_cast<float>(latticeSize - 1);
  for (int v = 0; v < 256; ++v) {
    const float x = static_cast<float>(v) / step;
    cell[v] = static_cast<int32_t>(std::floor(x));
    fraction[v] = x - static_cast<float>(cell[v]);
  }
}

/// 1 / step as the sum of two floats, for kernels that multiply instead of reading these tables. For every byte v and
/// every N, v * high + v * low, each operation rounded to single precision, equals the quotient v / step: `high` has 16
/// significant bits, so that its product is exact, and `low` is the remainder.
struct StepReciprocal {
  float high, low;

  explicit StepReciprocal(int32_t latticeSize) {
    const double reciprocal = 1.0 / static_cast<double>(255.0f / static_cast<float>(latticeSize - 1));
    high = std::bit_cast<float>(std::bit_cast<uint32_t>(static_cast<float>(reciprocal)) & 0xFFFFFF00u);
    low = static_cast<float>(reciprocal - static_cast<double>(high));
  }
};

}  // namespace Lumvane
