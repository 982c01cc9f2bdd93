// Siting: chroma samples are at the left pixel of each pair and half-way between the rows, the default for 4:2:0 video
// (ITU-T H.273, Chroma420SampleLocType 0).
//
// Upsampling: bilinear. A pixel on a chroma column uses that column, one between two uses half of each; a row uses
// three quarters of the nearer chroma row and a quarter of the other. Downsampling: the same triangle filter, which
// extends one chroma sample to each side: weights 1 2 1 horizontally and 1 3 3 1 vertically. At the edges the outermost
// sample is repeated.
//
// Rounding: integer arithmetic. The filters keep every bit (chroma in eighths when upsampling, colours in 32nds when
// downsampling), and each weighted sum is rounded once, half up.

#include "hdr/yv12_conversions.h"

#include <algorithm>

#include "hdr/yv12_planes.h"

namespace {

using namespace Lumvane;

void planesToRgb(const ToRgb& matrix, const Yv12Planes<const uint8_t>& planes, uint8_t* rgba, int rgbaStride) {
  if (planes.width <= 0) return;
  const Yv12ToRgbKernels kernels = yv12ToRgbKernels();
  for (int y = 0; y < planes.height; ++y) {
    kernels.row(matrix, sourceRow(planes, y), rowOf(rgba, rgbaStride, y), planes.width);
  }
}

void rgbToPlanes(const FromRgb& matrix, const uint8_t* rgba, int rgbaStride, const Yv12Planes<uint8_t>& planes) {
  if (planes.width <= 0) return;
  const Yv12FromRgbKernels kernels = yv12FromRgbKernels();
  const auto clampedRow = [&](int y) { return rowOf(rgba, rgbaStride, std::clamp(y, 0, planes.height - 1)); };
  for (int y = 0; y < planes.height; y += 2) {
    kernels.rowPair(matrix, {clampedRow(y - 1), clampedRow(y), clampedRow(y + 1), clampedRow(y + 2)},
                    destinationRows(planes, y), planes.width);
  }
}

}  // namespace

void imageYV12ToRGBBT2020_Limited(const uint8_t* srcY, int strideY, const uint8_t* srcV, int strideV,
                                  const uint8_t* srcU, int strideU, uint8_t* rgba, int rgbaStride, int width,
                                  int height) {
  static constexpr ToRgb kMatrix = toRgb(kBt2020, kLimited);
  planesToRgb(kMatrix, {srcY, strideY, srcV, strideV, srcU, strideU, width, height}, rgba, rgbaStride);
}

void imageYV12ToRGBBT2020_FULL(const uint8_t* srcY, int strideY, const uint8_t* srcV, int strideV, const uint8_t* srcU,
                               int strideU, uint8_t* rgba, int rgbaStride, int width, int height) {
  static constexpr ToRgb kMatrix = toRgb(kBt2020, kFull);
  planesToRgb(kMatrix, {srcY, strideY, srcV, strideV, srcU, strideU, width, height}, rgba, rgbaStride);
}

void imageRGBAToYV12BT709_Limited(const uint8_t* rgba, int rgbaStride, uint8_t* dstY, int strideY, uint8_t* dstV,
                                  int strideV, uint8_t* dstU, int strideU, int width, int height) {
  static constexpr FromRgb kMatrix = fromRgb(kBt709, kLimited);
  rgbToPlanes(kMatrix, rgba, rgbaStride, {dstY, strideY, dstV, strideV, dstU, strideU, width, height});
}

void imageRGBAToYV12BT709_Full(const uint8_t* rgba, int rgbaStride, uint8_t* dstY, int strideY, uint8_t* dstV,
                               int strideV, uint8_t* dstU, int strideU, int width, int height) {
  static constexpr FromRgb kMatrix = fromRgb(kBt709, kFull);
  rgbToPlanes(kMatrix, rgba, rgbaStride, {dstY, strideY, dstV, strideV, dstU, strideU, width, height});
}
