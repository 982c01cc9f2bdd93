// The matrices between YV12 and R'G'B': Recommendations ITU-R BT.2020-2 (non-constant luminance) and BT.709-6,
//   Y' = kr R' + (1 - kr - kb) G' + kb B',  Cb = (B' - Y') / (2 (1 - kb)),  Cr = (R' - Y') / (2 (1 - kr)).
//
// Coefficients are integers with kFractionBits fractional bits. The chroma coefficients add up to exactly 0, so that
// greys stay neutral.
#pragma once

namespace Lumvane {

inline constexpr int kFractionBits = 18;  // the largest number with which no sum exceeds 32 bits
inline constexpr int kUpBits = 3;         // upsampled chroma is in eighths
inline constexpr int kDownBits = 5;       // downsampled colours are in thirty-seconds
inline constexpr int kNeutral = 128;

struct Primaries {
  double kr, kb;
};
inline constexpr Primaries kBt2020 = {0.2627, 0.0593};
inline constexpr Primaries kBt709 = {0.2126, 0.0722};

struct CodeRange {
  int black;            // Y of black
  double luma, chroma;  // code values from black to white, and from minimum to maximum chroma
};
inline constexpr CodeRange kLimited = {16, 219.0, 224.0};
inline constexpr CodeRange kFull = {0, 255.0, 255.0};

constexpr int fixedPoint(double value) {
  const double scaled = value * (1 << kFractionBits);
  return static_cast<int>(scaled < 0.0 ? scaled - 0.5 : scaled + 0.5);
}

struct ToRgb {
  int black, luma, redOfCr, greenOfCr, greenOfCb, blueOfCb;
};

constexpr ToRgb toRgb(const Primaries& p, const CodeRange& range) {
  const double kg = 1.0 - p.kr - p.kb;
  const double chroma = 255.0 / range.chroma;
  return {range.black,
          fixedPoint(255.0 / range.luma),
          fixedPoint(2.0 * (1.0 - p.kr) * chroma),
          fixedPoint(-2.0 * p.kr * (1.0 - p.kr) / kg * chroma),
          fixedPoint(-2.0 * p.kb * (1.0 - p.kb) / kg * chroma),
          fixedPoint(2.0 * (1.0 - p.kb) * chroma)};
}

// The weights of the three colours in Y, Cb and Cr.
struct FromRgb {
  int black;
  int y[3], cb[3], cr[3];  // blue, green, red
};

constexpr FromRgb fromRgb(const Primaries& p, const CodeRange& range) {
  const double luma = range.luma / 255.0;
  const double chroma = range.chroma / 255.0;
  FromRgb m = {};
  m.black = range.black;
  m.y[0] = fixedPoint(p.kb * luma);
  m.y[2] = fixedPoint(p.kr * luma);
  m.y[1] = fixedPoint(luma) - m.y[0] - m.y[2];
  m.cb[0] = fixedPoint(0.5 * chroma);
  m.cb[2] = fixedPoint(-0.5 * p.kr / (1.0 - p.kb) * chroma);
  m.cb[1] = -m.cb[0] - m.cb[2];
  m.cr[2] = fixedPoint(0.5 * chroma);
  m.cr[0] = fixedPoint(-0.5 * p.kb / (1.0 - p.kr) * chroma);
  m.cr[1] = -m.cr[0] - m.cr[2];
  return m;
}

}  // namespace Lumvane
