#include <algorithm>

#include "hdr/yv12_rows.h"

namespace Lumvane::plain {
namespace {

uint8_t toByte(int value) { return static_cast<uint8_t>(std::clamp(value, 0, 255)); }

// value / 2^bits, rounded, half up; also for negative values.
int roundedShift(int value, int bits) { return (value + (1 << (bits - 1))) >> bits; }

// Chroma at a pixel, in eighths, less the neutral value.
int chromaAt(const uint8_t* nearRow, const uint8_t* farRow, int x, int lastColumn) {
  const int left = x / 2;
  const int right = std::min(left + x % 2, lastColumn);
  return 3 * (nearRow[left] + nearRow[right]) + farRow[left] + farRow[right] - (kNeutral << kUpBits);
}

int weighted(const int (&weights)[3], const int (&bgr)[3]) {
  return weights[0] * bgr[0] + weights[1] * bgr[1] + weights[2] * bgr[2];
}

uint8_t lumaOf(const FromRgb& m, const uint8_t* pixel) {
  const int bgr[3] = {pixel[0], pixel[1], pixel[2]};
  return toByte(m.black + roundedShift(weighted(m.y, bgr), kFractionBits));
}

}  // namespace

void rowToRgb(const ToRgb& m, const Yv12Row& row, uint8_t* bgra, int width, int first) {
  const int lastColumn = (width - 1) / 2;
  for (int x = first; x < width; ++x) {
    uint8_t* pixel = bgra + 4 * x;
    const int grey = (row.luma[x] - m.black) * m.luma * (1 << kUpBits);
    const int cr = chromaAt(row.nearV, row.farV, x, lastColumn);
    const int cb = chromaAt(row.nearU, row.farU, x, lastColumn);
    pixel[0] = toByte(roundedShift(grey + m.blueOfCb * cb, kFractionBits + kUpBits));
    pixel[1] = toByte(roundedShift(grey + m.greenOfCr * cr + m.greenOfCb * cb, kFractionBits + kUpBits));
    pixel[2] = toByte(roundedShift(grey + m.redOfCr * cr, kFractionBits + kUpBits));
    pixel[3] = 255;
  }
}

void rowPairFromRgb(const FromRgb& m, const uint8_t* const (&bgra)[4], const Yv12RowPair& pair, int width, int first) {
  for (int x = first; x < width; ++x) {
    pair.upperLuma[x] = lumaOf(m, bgra[1] + 4 * x);
    pair.lowerLuma[x] = lumaOf(m, bgra[2] + 4 * x);
  }
  for (int x = first / 2; x < (width + 1) / 2; ++x) {
    const int left = std::max(2 * x - 1, 0) * 4, middle = 2 * x * 4, right = std::min(2 * x + 1, width - 1) * 4;
    int bgr[3];
    for (int c = 0; c < 3; ++c) {
      const auto across = [&](const uint8_t* row) { return row[left + c] + 2 * row[middle + c] + row[right + c]; };
      bgr[c] = across(bgra[0]) + 3 * (across(bgra[1]) + across(bgra[2])) + across(bgra[3]);
    }
    pair.v[x] = toByte(kNeutral + roundedShift(weighted(m.cr, bgr), kFractionBits + kDownBits));
    pair.u[x] = toByte(kNeutral + roundedShift(weighted(m.cb, bgr), kFractionBits + kDownBits));
  }
}

}  // namespace Lumvane::plain
