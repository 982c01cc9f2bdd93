// Tetrahedral interpolation between the points of one lattice cell, and the conversions to bytes of the two LUT paths.
//
// The diagonal from the cell's lower corner 000 to its upper corner 111 splits the cell into six tetrahedra. The order
// of the three fractions determines which one a colour is in: the path goes from 000 along the axis of the largest
// fraction to a, on along the middle one to b, and along the smallest one to 111. The weights are the differences of
// neighbouring fractions,
//   1 - max, max - mid, mid - min, min,
// and are never negative. Equal fractions fail the comparisons below; the point chosen then has weight 0, so the choice
// does not matter.
//
// Kasson, Plouffe, Nin: "A Tetrahedral Interpolation Technique for Color Space Conversion", Proc. SPIE 1909, 1993.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace Lumvane {

/// Returns the colour of the table for the bytes r, g, b: red, green, blue on the scale of the lattice. `Lattice` has
/// the members of LatticeView.
///
/// Single precision throughout, each weight, product and sum rounded immediately, sums from left to right: the bits of
/// the result are part of the library's contract. The upper neighbour of the last point is that point itself.
template <class Lattice>
std::array<float, 3> tetrahedralLookup(const Lattice& lattice, uint8_t r, uint8_t g, uint8_t b) {
  const float fr = lattice.fraction[r], fg = lattice.fraction[g], fb = lattice.fraction[b];
  const int32_t top = lattice.latticeSize - 1;
  const int32_t x = lattice.cell[r], x1 = std::min(x + 1, top);
  const int32_t y = lattice.cell[g], y1 = std::min(y + 1, top);
  const int32_t z = lattice.cell[b], z1 = std::min(z + 1, top);

  const float* const p000 = lattice.point(x, y, z);
  const float* const p111 = lattice.point(x1, y1, z1);
  const float *pa, *pb;
  float w0, wa, wb, w1;
  if (fr > fg) {
    if (fg > fb) {  // r > g > b
      pa = lattice.point(x1, y, z), pb = lattice.point(x1, y1, z);
      w0 = 1.0f - fr, wa = fr - fg, wb = fg - fb, w1 = fb;
    } else if (fr > fb) {  // r > b >= g
      pa = lattice.point(x1, y, z), pb = lattice.point(x1, y, z1);
      w0 = 1.0f - fr, wa = fr - fb, wb = fb - fg, w1 = fg;
    } else {  // b >= r > g
      pa = lattice.point(x, y, z1), pb = lattice.point(x1, y, z1);
      w0 = 1.0f - fb, wa = fb - fr, wb = fr - fg, w1 = fg;
    }
  } else {
    if (fb > fg) {  // b > g >= r
      pa = lattice.point(x, y, z1), pb = lattice.point(x, y1, z1);
      w0 = 1.0f - fb, wa = fb - fg, wb = fg - fr, w1 = fr;
    } else if (fb > fr) {  // g >= b > r
      pa = lattice.point(x, y1, z), pb = lattice.point(x, y1, z1);
      w0 = 1.0f - fg, wa = fg - fb, wb = fb - fr, w1 = fr;
    } else {  // g >= r >= b
      pa = lattice.point(x, y1, z), pb = lattice.point(x1, y1, z);
      w0 = 1.0f - fg, wa = fg - fr, wb = fr - fb, w1 = fb;
    }
  }

  std::array<float, 3> out;
  for (int c = 0; c < 3; ++c) out[c] = ((w0 * p000[c] + wa * pa[c]) + wb * pb[c]) + w1 * p111[c];
  return out;
}

/// Converts a colour value to a byte for LUT grading: 0.5 is added in double precision, and the sum is rounded to
/// nearest, ties to even. So 10.2 and 10.9 both give 11, an even integer stays, and an odd one goes up by one. Values
/// out of range saturate, but those from 2^31 on, and NaN, give 0.
inline uint8_t roundToByte(float v) {
  if (!(v < 2147483648.0f)) return 0;  // x86 converts values beyond int32_t to a negative number
  const double sum = std::max(static_cast<double>(v), -1.0) + 0.5;
  return static_cast<uint8_t>(std::clamp(std::llrint(sum), 0LL, 255LL));
}

/// Converts a colour value to a byte for the HDR path: 0.5 is added, sums above 255 become 255, they are truncated
/// toward zero, and the low 8 bits are kept. There is no lower clamp: values of -1.5 and below wrap. Values that a
/// 64-bit integer cannot hold, and NaN, give 0.
inline uint8_t truncToByte(float v) {
  const double sum = std::min(static_cast<double>(v) + 0.5, 255.0);
  if (!(sum >= -9223372036854775808.0)) return 0;
  return static_cast<uint8_t>(static_cast<uint64_t>(static_cast<int64_t>(sum)) & 255);
}

}  // namespace Lumvane
