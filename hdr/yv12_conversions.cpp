// Siting: chroma samples lie on the left of each pair of pixels and half-way between the rows, as 4:2:0 video has them
// by default (ITU-T H.273, Chroma420SampleLocType 0).
//
// Filter up: bilinear. A pixel on a chroma column takes that column, one between two takes half of each; a row takes
// three quarters of the nearer chroma row and a quarter of the other. Filter down: the same triangle, which reaches
// one chroma sample to each side: 1 2 1 across and 1 3 3 1 down, in pixels. At the edges the outermost sample is repeated.
//
// Rounding: all arithmetic is in integers. The filters keep every bit (chroma in eighths on the way up, colours in
// thirty-seconds on the way down), and each weighted sum is rounded once, half up.

#include "hdr/yv12_conversions.h"

#include <algorithm>
#include <cstddef>

#include "hdr/yv12_rows.h"

namespace {

using namespace Lumvane;

template <class Byte>
Byte* rowOf(Byte* plane, int stride, int y) {
  return plane + static_cast<ptrdiff_t>(stride) * y;
}

void planesToRgb(const ToRgb& matrix, const uint8_t* srcY, int strideY, const uint8_t* srcV, int strideV,
                 const uint8_t* srcU, int strideU, uint8_t* rgba, int rgbaStride, int width, int height) {
  if (width <= 0 || height <= 0) return;
  const int lastRow = (height - 1) / 2;
  for (int y = 0; y < height; ++y) {
    const int nearRow = y / 2;
    const int farRow = std::clamp(y % 2 == 0 ? nearRow - 1 : nearRow + 1, 0, lastRow);
    const Yv12Row row = {rowOf(srcY, strideY, y), rowOf(srcV, strideV, nearRow), rowOf(srcV, strideV, farRow),
                         rowOf(srcU, strideU, nearRow), rowOf(srcU, strideU, farRow)};
    rowToRgb(matrix, row, rowOf(rgba, rgbaStride, y), width);
  }
}

void rgbToPlanes(const FromRgb& matrix, const uint8_t* rgba, int rgbaStride, uint8_t* dstY, int strideY, uint8_t* dstV,
                 int strideV, uint8_t* dstU, int strideU, int width, int height) {
  if (width <= 0 || height <= 0) return;
  const auto clampedRow = [&](int y) { return rowOf(rgba, rgbaStride, std::clamp(y, 0, height - 1)); };
  for (int y = 0; y < height; y += 2) {
    const uint8_t* const rows[4] = {clampedRow(y - 1), clampedRow(y), clampedRow(y + 1), clampedRow(y + 2)};
    const Yv12RowPair pair = {rowOf(dstY, strideY, y), rowOf(dstY, strideY, std::min(y + 1, height - 1)),
                              rowOf(dstV, strideV, y / 2), rowOf(dstU, strideU, y / 2)};
    rowPairFromRgb(matrix, rows, pair, width);
  }
}

}  // namespace

void imageYV12ToRGBBT2020_Limited(const uint8_t* srcY, int strideY, const uint8_t* srcV, int strideV,
                                  const uint8_t* srcU, int strideU, uint8_t* rgba, int rgbaStride, int width,
                                  int height) {
  static constexpr ToRgb kMatrix = toRgb(kBt2020, kLimited);
  planesToRgb(kMatrix, srcY, strideY, srcV, strideV, srcU, strideU, rgba, rgbaStride, width, height);
}

void imageYV12ToRGBBT2020_FULL(const uint8_t* srcY, int strideY, const uint8_t* srcV, int strideV, const uint8_t* srcU,
                               int strideU, uint8_t* rgba, int rgbaStride, int width, int height) {
  static constexpr ToRgb kMatrix = toRgb(kBt2020, kFull);
  planesToRgb(kMatrix, srcY, strideY, srcV, strideV, srcU, strideU, rgba, rgbaStride, width, height);
}

void imageRGBAToYV12BT709_Limited(const uint8_t* rgba, int rgbaStride, uint8_t* dstY, int strideY, uint8_t* dstV,
                                  int strideV, uint8_t* dstU, int strideU, int width, int height) {
  static constexpr FromRgb kMatrix = fromRgb(kBt709, kLimited);
  rgbToPlanes(kMatrix, rgba, rgbaStride, dstY, strideY, dstV, strideV, dstU, strideU, width, height);
}

void imageRGBAToYV12BT709_Full(const uint8_t* rgba, int rgbaStride, uint8_t* dstY, int strideY, uint8_t* dstV,
                               int strideV, uint8_t* dstU, int strideU, int width, int height) {
  static constexpr FromRgb kMatrix = fromRgb(kBt709, kFull);
  rgbToPlanes(kMatrix, rgba, rgbaStride, dstY, strideY, dstV, strideV, dstU, strideU, width, height);
}
