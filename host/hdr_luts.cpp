// Converts HDR signals to BT.709 for a standard dynamic range display, in these steps:
//
// 1. Signal to light on an HDR display in cd/m2, BT.2020 primaries. PQ: the EOTF of SMPTE ST 2084. HLG: the inverse
//    OETF and the OOTF for a nominal peak of 1000 cd/m2, system gamma 1.2 (both ITU-R BT.2100-2, tables 4 and 5).
// 2. Primaries: BT.2020 to BT.709 (ITU-R BT.2087-0, inverted).
// 3. Gamut: a colour outside BT.709, with a negative red, green or blue, is moved towards the grey
//    of the same luminance until it is inside.
// 4. Tone curve: the EETF of ITU-R BT.2390, from a peak of 1000 cd/m2 to 203 cd/m2, the reference white of
//    ITU-R BT.2408: light up to about 88 cd/m2 is kept, light above is compressed, and 1000 cd/m2 become white. It is
//    applied to the largest component and the other two are scaled by the same factor: so nothing is clipped, and
//    highlights keep their hue.
// 5. Light to signal: the inverse of the BT.1886 EOTF, a power of 1 / 2.4.

#include "host/hdr_luts.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace host {
namespace {

constexpr double kPeak = 1000.0;           // cd/m2, of the HDR display
constexpr double kReferenceWhite = 203.0;  // cd/m2, becomes the white of BT.709
const Colour kLuma2020 = {0.2627, 0.6780, 0.0593};
const Colour kLuma709 = {0.2126, 0.7152, 0.0722};
const cv::Matx33d kBt2020ToBt709 = {1.660491,  -0.587641, -0.072850, -0.124550, 1.132900,
                                    -0.008349, -0.018151, -0.100579, 1.118730};

// SMPTE ST 2084
constexpr double kM1 = 2610.0 / 16384.0, kM2 = 2523.0 / 32.0;
constexpr double kC1 = 3424.0 / 4096.0, kC2 = 2413.0 / 128.0, kC3 = 2392.0 / 128.0;

// BT.2100 HLG
constexpr double kA = 0.17883277, kB = 1.0 - 4.0 * kA;
const double kC = 0.5 - kA * std::log(4.0 * kA);
constexpr double kSystemGamma = 1.2;

double pqSignal(double light) {
  const double y = std::pow(std::clamp(light / 10000.0, 0.0, 1.0), kM1);
  return std::pow((kC1 + kC2 * y) / (1.0 + kC3 * y), kM2);
}

double pqLight(double signal) {
  const double p = std::pow(signal, 1.0 / kM2);
  return 10000.0 * std::pow(std::max(p - kC1, 0.0) / (kC2 - kC3 * p), 1.0 / kM1);
}

Colour hlgSignal(const Colour& light) {
  const double luminance = kLuma2020.dot(light) / kPeak;
  if (luminance <= 0.0) return {};
  const double gain = std::pow(luminance, (1.0 - kSystemGamma) / kSystemGamma) / kPeak;
  Colour signal;
  for (int c = 0; c < 3; ++c) {
    const double scene = std::clamp(light[c] * gain, 0.0, 1.0);
    signal[c] = scene <= 1.0 / 12.0 ? std::sqrt(3.0 * scene) : kA * std::log(12.0 * scene - kB) + kC;
  }
  return signal;
}

Colour hlgLight(const Colour& signal) {
  Colour scene;
  for (int c = 0; c < 3; ++c) {
    scene[c] = signal[c] <= 0.5 ? signal[c] * signal[c] / 3.0 : (std::exp((signal[c] - kC) / kA) + kB) / 12.0;
  }
  return scene * (kPeak * std::pow(kLuma2020.dot(scene), kSystemGamma - 1.0));
}

// The EETF with black at 0: a Hermite spline above the knee, on PQ signals normalised to that of the peak.
double toneCurve(double light) {
  const double peak = pqSignal(kPeak);
  const double target = pqSignal(kReferenceWhite) / peak;
  const double knee = 1.5 * target - 0.5;
  const double e = std::min(pqSignal(light) / peak, 1.0);
  if (e < knee) return light;
  const double t = (e - knee) / (1.0 - knee), t2 = t * t, t3 = t2 * t;
  const double bent = (2 * t3 - 3 * t2 + 1) * knee + (t3 - 2 * t2 + t) * (1 - knee) + (-2 * t3 + 3 * t2) * target;
  return pqLight(bent * peak);
}

Colour intoGamut(const Colour& colour) {
  const double grey = kLuma709.dot(colour);
  const double least = *std::min_element(colour.val, colour.val + 3);
  if (least >= 0.0) return colour;
  const double share = grey / (grey - least);
  Colour out;
  for (int c = 0; c < 3; ++c) out[c] = std::max(grey + (colour[c] - grey) * share, 0.0);
  return out;
}

}  // namespace

Colour hdrSignal(const Colour& light, bool pq) {
  return pq ? Colour(pqSignal(light[0]), pqSignal(light[1]), pqSignal(light[2])) : hlgSignal(light);
}

Colour hdrToBt709(const Colour& signal, bool pq) {
  const Colour light = pq ? Colour(pqLight(signal[0]), pqLight(signal[1]), pqLight(signal[2])) : hlgLight(signal);
  Colour out = intoGamut(kBt2020ToBt709 * light);
  const double largest = *std::max_element(out.val, out.val + 3);
  if (largest <= 0.0) return {};
  const double gain = toneCurve(largest) / largest / kReferenceWhite;
  for (double& value : out.val) value = std::pow(std::min(value * gain, 1.0), 1.0 / 2.4);
  return out;
}

std::string cubeText(const std::string& title, int size, const std::function<Colour(const Colour&)>& colourAt) {
  std::string text = "TITLE \"" + title + "\"\nLUT_3D_SIZE " + std::to_string(size) + "\n";
  const double step = 1.0 / (size - 1);
  char row[64];
  for (int i = 0; i < size * size * size; ++i) {  // red runs fastest
    const Colour c = colourAt({i % size * step, i / size % size * step, i / size / size * step});
    std::snprintf(row, sizeof row, "%.6f %.6f %.6f\n", c[0], c[1], c[2]);
    text += row;
  }
  return text;
}

}  // namespace host
