// Rows between YV12 planes and BGRA pixels. What is said of filters and rounding in yv12_conversions.cpp holds here.
#pragma once

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
void rowToRgb(const ToRgb& matrix, const Yv12Row& row, uint8_t* bgra, int width);

/// Converts two rows of `width` pixels, 1 or more: bgra[1] and bgra[2], between the rows above and below them.
void rowPairFromRgb(const FromRgb& matrix, const uint8_t* const (&bgra)[4], const Yv12RowPair& pair, int width);

namespace plain {

/// The same, one pixel at a time: what the vector forms are held against. Pixels ahead of `first`, an even number, are
/// left out.
void rowToRgb(const ToRgb& matrix, const Yv12Row& row, uint8_t* bgra, int width, int first = 0);
void rowPairFromRgb(const FromRgb& matrix, const uint8_t* const (&bgra)[4], const Yv12RowPair& pair, int width,
                    int first = 0);

}  // namespace plain
}  // namespace Lumvane
