// Siting: chroma samples lie on the left of each pair of pixels and half-way between the rows, as 4:2:0 video has them
// by default (ITU-T H.273, Chroma420SampleLocType 0).
//
// Filter up: bilinear. A pixel on a chroma column takes that column, one between two takes half of each; a row takes
// three quarters of the nearer chroma row and a quarter of the other. Filter down: the same triangle, which reaches
// one chroma sample to each side: 1 2 1 across and 1 3 3 1 down, in pixels. At the edges the outermost sample is repeated.
//
// Matrices: Recommendations ITU-R BT.2020-2 (non-constant luminance) and BT.709-6,
//   Y' = kr R' + (1 - kr - kb) G' + kb B',  Cb = (B' - Y') / (2 (1 - kb)),  Cr = (R' - Y') / (2 (1 - kr)).
//
// Rounding: all arithmetic is in integers. The filters keep every bit (chroma in eighths on the way up, colours in
// thirty-seconds on the way down), the coefficients have 18 bits behind the point, and each sum is rounded once,
// half up. The coefficients of what carries no colour add up to exactly 0, so that greys stay neutral.

#include "hdr/yv12_conversions.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr int kFractionBits = 18;  // the most with which no sum leaves 32 bits
constexpr int kUpBits = 3;         // chroma in eighths
constexpr int kDownBits = 5;       // filtered colours in thirty-seconds

struct Range {
  int black;            // Y of black
  double luma, chroma;  // code values from black to white, and from one end of the chroma to the other
};
constexpr Range kLimited = {16, 219.0, 224.0};
constexpr Range kFull = {0, 255.0, 255.0};
constexpr int kNeutral = 128;

struct Primaries {
  double kr, kb;
};
constexpr Primaries kBt2020 = {0.2627, 0.0593};
constexpr Primaries kBt709 = {0.2126, 0.0722};

constexpr int fixed(double value) {
  const double scaled = value * (1 << kFractionBits);
  return static_cast<int>(scaled < 0.0 ? scaled - 0.5 : scaled + 0.5);
}

uint8_t toByte(int value) { return static_cast<uint8_t>(std::clamp(value, 0, 255)); }

// value / 2^bits, rounded, half up; also for negative values.
int roundedShift(int value, int bits) { return (value + (1 << (bits - 1))) >> bits; }

template <class Byte>
Byte* rowOf(Byte* plane, int stride, int y) {
  return plane + static_cast<ptrdiff_t>(stride) * y;
}

struct ToRgb {
  int black, luma, redOfCr, greenOfCr, greenOfCb, blueOfCb;
};

constexpr ToRgb toRgb(const Primaries& p, const Range& range) {
  const double kg = 1.0 - p.kr - p.kb;
  const double chroma = 255.0 / range.chroma;
  return {range.black,
          fixed(255.0 / range.luma),
          fixed(2.0 * (1.0 - p.kr) * chroma),
          fixed(-2.0 * p.kr * (1.0 - p.kr) / kg * chroma),
          fixed(-2.0 * p.kb * (1.0 - p.kb) / kg * chroma),
          fixed(2.0 * (1.0 - p.kb) * chroma)};
}

// Chroma at a pixel, in eighths, less the neutral value. `nearRow` and `farRow` are the two chroma rows around the
// pixel's row.
int chromaAt(const uint8_t* nearRow, const uint8_t* farRow, int x, int lastColumn) {
  const int left = x / 2;
  const int right = std::min(left + x % 2, lastColumn);
  return 3 * (nearRow[left] + nearRow[right]) + farRow[left] + farRow[right] - (kNeutral << kUpBits);
}

void planesToRgb(const ToRgb& m, const uint8_t* srcY, int strideY, const uint8_t* srcV, int strideV,
                 const uint8_t* srcU, int strideU, uint8_t* rgba, int rgbaStride, int width, int height) {
  if (width <= 0 || height <= 0) return;
  const int lastColumn = (width - 1) / 2;
  const int lastRow = (height - 1) / 2;
  for (int y = 0; y < height; ++y) {
    const int nearRow = y / 2;
    const int farRow = std::clamp(y % 2 == 0 ? nearRow - 1 : nearRow + 1, 0, lastRow);
    const uint8_t* luma = rowOf(srcY, strideY, y);
    const uint8_t *nearV = rowOf(srcV, strideV, nearRow), *farV = rowOf(srcV, strideV, farRow);
    const uint8_t *nearU = rowOf(srcU, strideU, nearRow), *farU = rowOf(srcU, strideU, farRow);
    uint8_t* pixel = rowOf(rgba, rgbaStride, y);
    for (int x = 0; x < width; ++x, pixel += 4) {
      const int grey = (luma[x] - m.black) * m.luma * (1 << kUpBits);
      const int cr = chromaAt(nearV, farV, x, lastColumn);
      const int cb = chromaAt(nearU, farU, x, lastColumn);
      pixel[0] = toByte(roundedShift(grey + m.blueOfCb * cb, kFractionBits + kUpBits));
      pixel[1] = toByte(roundedShift(grey + m.greenOfCr * cr + m.greenOfCb * cb, kFractionBits + kUpBits));
      pixel[2] = toByte(roundedShift(grey + m.redOfCr * cr, kFractionBits + kUpBits));
      pixel[3] = 255;
    }
  }
}

// What the three colours contribute to Y, to Cb and to Cr.
struct FromRgb {
  int black;
  int y[3], cb[3], cr[3];  // blue, green, red
};

constexpr FromRgb fromRgb(const Primaries& p, const Range& range) {
  const double luma = range.luma / 255.0;
  const double chroma = range.chroma / 255.0;
  FromRgb m = {};
  m.black = range.black;
  m.y[0] = fixed(p.kb * luma);
  m.y[2] = fixed(p.kr * luma);
  m.y[1] = fixed(luma) - m.y[0] - m.y[2];
  m.cb[0] = fixed(0.5 * chroma);
  m.cb[2] = fixed(-0.5 * p.kr / (1.0 - p.kb) * chroma);
  m.cb[1] = -m.cb[0] - m.cb[2];
  m.cr[2] = fixed(0.5 * chroma);
  m.cr[0] = fixed(-0.5 * p.kb / (1.0 - p.kr) * chroma);
  m.cr[1] = -m.cr[0] - m.cr[2];
  return m;
}

int weighted(const int (&weights)[3], const int (&bgr)[3]) {
  return weights[0] * bgr[0] + weights[1] * bgr[1] + weights[2] * bgr[2];
}

void rgbToPlanes(const FromRgb& m, const uint8_t* rgba, int rgbaStride, uint8_t* dstY, int strideY, uint8_t* dstV,
                 int strideV, uint8_t* dstU, int strideU, int width, int height) {
  if (width <= 0 || height <= 0) return;
  for (int y = 0; y < height; ++y) {
    const uint8_t* pixel = rowOf(rgba, rgbaStride, y);
    uint8_t* luma = rowOf(dstY, strideY, y);
    for (int x = 0; x < width; ++x, pixel += 4) {
      const int bgr[3] = {pixel[0], pixel[1], pixel[2]};
      luma[x] = toByte(m.black + roundedShift(weighted(m.y, bgr), kFractionBits));
    }
  }
  for (int y = 0; y < (height + 1) / 2; ++y) {
    const uint8_t* rows[4];
    for (int i = 0; i < 4; ++i) rows[i] = rowOf(rgba, rgbaStride, std::clamp(2 * y - 1 + i, 0, height - 1));
    uint8_t* v = rowOf(dstV, strideV, y);
    uint8_t* u = rowOf(dstU, strideU, y);
    for (int x = 0; x < (width + 1) / 2; ++x) {
      const int left = std::max(2 * x - 1, 0) * 4, middle = 2 * x * 4, right = std::min(2 * x + 1, width - 1) * 4;
      int bgr[3];
      for (int c = 0; c < 3; ++c) {
        const auto across = [&](const uint8_t* row) { return row[left + c] + 2 * row[middle + c] + row[right + c]; };
        bgr[c] = across(rows[0]) + 3 * (across(rows[1]) + across(rows[2])) + across(rows[3]);
      }
      v[x] = toByte(kNeutral + roundedShift(weighted(m.cr, bgr), kFractionBits + kDownBits));
      u[x] = toByte(kNeutral + roundedShift(weighted(m.cb, bgr), kFractionBits + kDownBits));
    }
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
