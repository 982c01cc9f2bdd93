// What an HDR LUT does to the pixels of a row, and to every colour there is. As for the kernels of grading: no frames, no
// threads, no memory, and exactly the bytes that the count says.
#pragma once

#include <cstddef>
#include <cstdint>

#include "apply/lattice.h"
#include "apply/tetrahedral_lookup.h"

namespace Lumvane {

/// What an HDR LUT makes of one colour, in the order of the LUT's columns: red, green, blue.
struct RGB8 {
  uint8_t component[3];
};
static_assert(sizeof(RGB8) == 3);

inline constexpr uint32_t kCacheEntries = 1u << 24;

/// The number of the colour's entry in a cache of all of them.
inline uint32_t cacheEntry(uint8_t r, uint8_t g, uint8_t b) { return uint32_t{r} * 65536 + uint32_t{g} * 256 + b; }

/// Components red, green, blue of tetrahedralLookup through truncToByte, from a LatticeView or an HdrLatticeView.
template <class Lattice>
RGB8 hdrColour(const Lattice& lattice, uint8_t r, uint8_t g, uint8_t b) {
  const auto out = tetrahedralLookup(lattice, r, g, b);
  return {{truncToByte(out[0]), truncToByte(out[1]), truncToByte(out[2])}};
}

/// Maps BGRA pixels through the cache of an HDR LUT. Byte 3 is copied. dst may be src.
using CacheRow = void(const RGB8* cache, const uint8_t* src, uint8_t* dst, size_t pixels);

/// True for a value of which, with others like it, interpolation makes nothing below -1.5 or beyond the range of integers.
inline bool isOrdinary(float value) { return value > -1.0f && value <= 1 << 20; }

/// Maps BGRA pixels through the lattice itself, by hdrColour. Byte 3 is copied. dst may be src. All values of the lattice
/// are ordinary, and its tables are those of its size. A float behind its last point may be read; what it is does not
/// matter.
using HdrLatticeRow = void(const LatticeView& lattice, const uint8_t* src, uint8_t* dst, size_t pixels);

/// Computes the 65536 entries of a cache whose colours have the red value `r`: hdrColour of each. The tables of
/// `lattice` may be those of another size, up to 65: a faulty file after a good one leaves that.
using FillCache = void(const HdrLatticeView& lattice, uint8_t r, RGB8* entries);

struct HdrKernels {
  CacheRow* cacheRow;
  HdrLatticeRow* latticeRow;
  FillCache* fillCache;
};

/// One colour at a time: what the others are held against.
extern const HdrKernels plainHdrKernels;

/// The fastest on this processor.
const HdrKernels& hdrKernels();

}  // namespace Lumvane
