#pragma once

#include <cstdint>

#include "apply/lattice_view.h"

namespace Lumvane {

/// A lattice of the HDR path: [red][green] leads to a row of 65 points along blue, red, green, blue of the colour each.
/// All rows are there, whatever the size of the LUT.
using HdrLattice = float***;

/// What an HDR LUT makes of one colour, in the order of the LUT's columns: red, green, blue.
struct RGB8 {
  uint8_t component[3];
};
static_assert(sizeof(RGB8) == 3);

inline constexpr uint32_t kCacheEntries = 1u << 24;

/// The number of the colour's entry in a cache of all of them.
inline uint32_t cacheEntry(uint8_t r, uint8_t g, uint8_t b) { return uint32_t{r} * 65536 + uint32_t{g} * 256 + b; }

/// LatticeView over an HdrLattice.
struct HdrLatticeView {
  int32_t latticeSize;
  const float* fraction;
  const int32_t* cell;
  HdrLattice lattice;

  const float* point(int32_t x, int32_t y, int32_t z) const { return lattice[x][y] + z * 3; }
};

}  // namespace Lumvane
