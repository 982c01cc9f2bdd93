// Kernels that apply an HDR LUT to a row of pixels, and to every possible colour. As in grade_kernels.h, they are
// independent of frames and threads, do not allocate, and access exactly the bytes that their pixel count covers.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "apply/lattice.h"
#include "apply/tetrahedral_lookup.h"

namespace Lumvane {

/// The result of an HDR LUT for one colour, in the order of the LUT's columns: red, green, blue.
struct RGB8 {
  uint8_t component[3];
};
static_assert(sizeof(RGB8) == 3);

inline constexpr uint32_t kCacheEntries = 1u << 24;

/// Returns the index of a colour in a cache of all colours.
inline uint32_t cacheEntry(uint8_t r, uint8_t g, uint8_t b) { return uint32_t{r} * 65536 + uint32_t{g} * 256 + b; }

/// Returns tetrahedralLookup converted by truncToByte. `Lattice` is LatticeView or HdrLatticeView.
template <class Lattice>
RGB8 hdrColour(const Lattice& lattice, uint8_t r, uint8_t g, uint8_t b) {
  const auto out = tetrahedralLookup(lattice, r, g, b);
  return {{truncToByte(out[0]), truncToByte(out[1]), truncToByte(out[2])}};
}

/// Writes a colour as bytes 2, 1 and 0 of a BGRA pixel.
inline void storeColour(const RGB8& colour, uint8_t* pixel) {
  for (int c = 0; c < 3; ++c) pixel[c] = colour.component[2 - c];
}

/// Maps BGRA pixels by hdrColour, one at a time. Byte 3 is copied. dst may be src.
template <class Lattice>
void mapThroughLattice(const Lattice& lattice, const uint8_t* src, uint8_t* dst, size_t pixels) {
  for (size_t i = 0; i < pixels; ++i, src += 4, dst += 4) {
    dst[3] = src[3];
    storeColour(hdrColour(lattice, src[2], src[1], src[0]), dst);
  }
}

/// Maps BGRA pixels through the cache of an HDR LUT. Byte 3 is copied. dst may be src.
using CacheRow = void(const RGB8* cache, const uint8_t* src, uint8_t* dst, size_t pixels);

/// Lattice values up to this magnitude are ordinary: with them, the vector forms convert results to bytes correctly.
inline constexpr float kMaxOrdinary = 1 << 20;
inline bool isOrdinary(float value) { return std::abs(value) <= kMaxOrdinary; }  // false for a NaN

/// mapThroughLattice for a lattice whose values are all ordinary and whose tables match its size. One float past its
/// last point may be read; its value does not matter.
using HdrLatticeRow = void(const LatticeView& lattice, const uint8_t* src, uint8_t* dst, size_t pixels);

/// Computes the 65536 cache entries of colours with the red value `r`, each by hdrColour. `fraction` and `cell` may be
/// for another size, up to 65: the state after a bad file follows a good one.
using FillCache = void(const HdrLatticeView& lattice, uint8_t r, RGB8* entries);

struct HdrKernels {
  CacheRow* cacheRow;
  HdrLatticeRow* latticeRow;
  FillCache* fillCache;
};

/// The plain forms, one colour at a time: the reference for all others.
extern const HdrKernels plainHdrKernels;

/// Returns the fastest kernels for this processor.
HdrKernels hdrKernels();

}  // namespace Lumvane
