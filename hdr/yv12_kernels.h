// Rows between YV12 planes and BGRA pixels. What is said of filters and rounding in yv12_conversions.cpp holds here.
#pragma once

#include <algorithm>
#include <cstdint>

#include "hdr/yv12_matrices.h"

namespace Lumvane {

/// What a row of pixels is made from: its Y, and the chroma rows nearest to it and next to that.
struct Yv12Row {
  const uint8_t *luma, *nearV, *farV, *nearU, *farU;
};

/// Where two rows of pixels go that share their chroma. The last row of an odd height comes as both of them.
struct Yv12RowPair {
  uint8_t *upperLuma, *lowerLuma, *v, *u;
};

/// Converts a row of `width` pixels, 1 or more. Byte 3 becomes 255.
using RowToRgb = void(const ToRgb& matrix, const Yv12Row& row, uint8_t* bgra, int width);

/// Converts two rows of `width` pixels, 1 or more: bgra[1] and bgra[2], between the rows above and below them.
using RowPairFromRgb = void(const FromRgb& matrix, const uint8_t* const (&bgra)[4], const Yv12RowPair& pair, int width);

/// One pixel at a time: what the others are held against.
extern RowToRgb* const plainRowToRgb;
extern RowPairFromRgb* const plainRowPairFromRgb;

/// The fastest on this processor.
RowToRgb* rowToRgbKernel();
RowPairFromRgb* rowPairFromRgbKernel();

struct Yv12Kernels {
  RowToRgb* rowToRgb;
  RowPairFromRgb* rowPairFromRgb;
};
inline Yv12Kernels yv12Kernels() { return {rowToRgbKernel(), rowPairFromRgbKernel()}; }
inline Yv12Kernels plainYv12Kernels() { return {plainRowToRgb, plainRowPairFromRgb}; }

namespace plain {

inline uint8_t toByte(int value) { return static_cast<uint8_t>(std::clamp(value, 0, 255)); }

/// value / 2^bits, rounded, half up; also for negative values.
inline int roundedShift(int value, int bits) { return (value + (1 << (bits - 1))) >> bits; }

}  // namespace plain
}  // namespace Lumvane
