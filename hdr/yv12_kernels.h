// Kernels that convert rows between YV12 planes and BGRA pixels. Filters and rounding are described in
// yv12_conversions.cpp.
#pragma once

#include <algorithm>
#include <cstdint>

#include "hdr/yv12_matrices.h"

namespace Lumvane {

/// The input for a row of pixels: its Y, the nearer chroma rows and the farther ones.
struct Yv12Row {
  const uint8_t *luma, *nearV, *farV, *nearU, *farU;
};

/// The output of two rows of pixels that share chroma. For the last row of an odd height both are the same row.
struct Yv12RowPair {
  uint8_t *upperLuma, *lowerLuma, *v, *u;
};

/// Converts a row of `width` pixels, 1 or more. Byte 3 becomes 255.
using RowToRgb = void(const ToRgb& matrix, const Yv12Row& row, uint8_t* bgra, int width);

/// Converts two rows of `width` pixels, 1 or more: bgra[1] and bgra[2], between the rows above and below them.
using RowPairFromRgb = void(const FromRgb& matrix, const uint8_t* const (&bgra)[4], const Yv12RowPair& pair, int width);

struct Yv12ToRgbKernels {
  RowToRgb* row;
};
struct Yv12FromRgbKernels {
  RowPairFromRgb* rowPair;
};

/// The plain forms, one pixel at a time: the reference for all others.
extern const Yv12ToRgbKernels plainYv12ToRgbKernels;
extern const Yv12FromRgbKernels plainYv12FromRgbKernels;

/// Return the fastest kernels for this processor.
Yv12ToRgbKernels yv12ToRgbKernels();
Yv12FromRgbKernels yv12FromRgbKernels();

namespace plain {

inline uint8_t toByte(int value) { return static_cast<uint8_t>(std::clamp(value, 0, 255)); }

/// Returns value / 2^bits, rounded half up; also for negative values.
inline int roundedShift(int value, int bits) { return (value + (1 << (bits - 1))) >> bits; }

}  // namespace plain
}  // namespace Lumvane
