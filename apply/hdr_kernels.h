// What an HDR LUT does to the pixels of a row, and to every colour there is. As for the kernels of row_kernels.h:
// no frames, no threads, no memory, and exactly the bytes that the count says.
#pragma once

#include <cstddef>
#include <cstdint>

#include "apply/hdr_lattice.h"

namespace Lumvane {

/// Maps BGRA pixels through the cache of an HDR LUT. Byte 3 is copied. dst may be src.
void hdrCacheRow(const RGB8* cache, const uint8_t* src, uint8_t* dst, size_t pixels);

/// Computes the 65536 entries of a cache whose colours have the red value `r`: hdrColour of each. The tables of
/// `lattice` may be those of another size, up to 65: a faulty file after a good one leaves that.
void hdrCacheFill(const HdrLatticeView& lattice, uint8_t r, RGB8* entries);

namespace plain {

/// What an HDR LUT makes of one colour: components red, green, blue of tetrahedralLookup through truncToByte.
RGB8 hdrColour(const HdrLatticeView& lattice, uint8_t r, uint8_t g, uint8_t b);

/// Maps BGRA pixels through the lattice itself, by hdrColour.
void hdrLatticeRow(const HdrLatticeView& lattice, const uint8_t* src, uint8_t* dst, size_t pixels);

/// The kernels above, one colour at a time: what their vector forms are held against.
void hdrCacheRow(const RGB8* cache, const uint8_t* src, uint8_t* dst, size_t pixels);
void hdrCacheFill(const HdrLatticeView& lattice, uint8_t r, RGB8* entries);

}  // namespace plain
}  // namespace Lumvane
