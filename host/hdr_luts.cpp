// From HDR signals to BT.709 for a display of standard dynamic range, in these steps:
//
// 1. Signal to light on an HDR display in cd/m2, BT.2020 primaries. PQ: the EOTF of SMPTE ST 2084. HLG: the inverse
//    OETF and the OOTF for a nominal peak of 1000 cd/m2, system gamma 1.2 (both ITU-R BT.2100-2, tables 4 and 5).
// 2. Primaries: BT.2020 to BT.709 (ITU-R BT.2087-0, inverted).
// 3. Gamut: a colour that BT.709 cannot show, with less than nothing of red, green or blue, is moved towards the grey
//    of its own luminance until it can.
// 4. Tone curve: the EETF of ITU-R BT.2390, from a peak of 1000 cd/m2 to 203 cd/m2, the reference white of
//    ITU-R BT.2408: light up to about 88 cd/m2 is kept, what is above is bent down, and 1000 cd/m2 become white. It is
//    applied to the largest of the three colours and the other two keep their proportion to it: so nothing is clipped,
//    and highlights keep their hue.
// 5. Light to signal: the inverse of the BT.1886 display, a power of 1 / 2.4.

#include "host/hdr_luts.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <system_error>

#include "host/fault.h"
#include "host/output_file.h"
#include "host/paths.h"

namespace host {
namespace {

using Colour = std::array<double, 3>;  // red, green, blue

constexpr double kPeak = 1000.0;           // cd/m2, of what is shown
constexpr double kReferenceWhite = 203.0;  // cd/m2, becomes the white of BT.709
constexpr Colour kLuma2020 = {0.2627, 0.6780, 0.0593};
constexpr Colour kLuma709 = {0.2126, 0.7152, 0.0722};

// SMPTE ST 2084
constexpr double kM1 = 2610.0 / 16384.0, kM2 = 2523.0 / 32.0;
constexpr double kC1 = 3424.0 / 4096.0, kC2 = 2413.0 / 128.0, kC3 = 2392.0 / 128.0;

// BT.2100 HLG
constexpr double kA = 0.17883277, kB = 1.0 - 4.0 * kA;
const double kC = 0.5 - kA * std::log(4.0 * kA);
constexpr double kSystemGamma = 1.2;

double dot(const Colour& a, const Colour& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

double pqLight(double signal) {
  const double p = std::pow(signal, 1.0 / kM2);
  return 10000.0 * std::pow(std::max(p - kC1, 0.0) / (kC2 - kC3 * p), 1.0 / kM1);
}

Colour hlgLight(const Colour& signal) {
  Colour scene;
  for (size_t c = 0; c < 3; ++c) {
    scene[c] = signal[c] <= 0.5 ? signal[c] * signal[c] / 3.0 : (std::exp((signal[c] - kC) / kA) + kB) / 12.0;
  }
  const double gain = kPeak * std::pow(dot(kLuma2020, scene), kSystemGamma - 1.0);
  for (double& value : scene) value *= gain;
  return scene;
}

// The EETF with black at 0: a Hermite spline above the knee, in PQ signal as a part of the peak's.
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

Colour toBt709Primaries(const Colour& c) {
  return {1.660491 * c[0] - 0.587641 * c[1] - 0.072850 * c[2], -0.124550 * c[0] + 1.132900 * c[1] - 0.008349 * c[2],
          -0.018151 * c[0] - 0.100579 * c[1] + 1.118730 * c[2]};
}

Colour intoGamut(const Colour& colour) {
  const double grey = dot(kLuma709, colour);
  const double least = *std::min_element(colour.begin(), colour.end());
  if (least >= 0.0) return colour;
  const double share = grey / (grey - least);
  Colour out;
  for (size_t c = 0; c < 3; ++c) out[c] = std::max(grey + (colour[c] - grey) * share, 0.0);
  return out;
}

Colour lightToBt709(const Colour& light) {
  Colour out = intoGamut(toBt709Primaries(light));
  const double largest = *std::max_element(out.begin(), out.end());
  if (largest <= 0.0) return {0.0, 0.0, 0.0};
  const double gain = toneCurve(largest) / largest / kReferenceWhite;
  for (double& value : out) value = std::pow(std::min(value * gain, 1.0), 1.0 / 2.4);
  return out;
}

void writeLut(const std::filesystem::path& path, int size, HdrLook look, const char* title) {
  std::string text = std::string("TITLE \"") + title + "\"\nLUT_3D_SIZE " + std::to_string(size) + "\n";
  const double step = 1.0 / (size - 1);
  char row[64];
  for (int blue = 0; blue < size; ++blue) {
    for (int green = 0; green < size; ++green) {
      for (int red = 0; red < size; ++red) {
        const Colour c = look({red * step, green * step, blue * step});
        std::snprintf(row, sizeof row, "%.6f %.6f %.6f\n", c[0], c[1], c[2]);
        text += row;
      }
    }
  }
  OutputFile file(path);
  file.write(text.data(), text.size());
  file.finish();
}

}  // namespace

double pqSignal(double light) {
  const double y = std::pow(std::clamp(light / 10000.0, 0.0, 1.0), kM1);
  return std::pow((kC1 + kC2 * y) / (1.0 + kC3 * y), kM2);
}

std::array<double, 3> hlgSignal(const std::array<double, 3>& light) {
  const double luminance = dot(kLuma2020, light) / kPeak;
  std::array<double, 3> signal = {};
  if (luminance <= 0.0) return signal;
  const double gain = std::pow(luminance, (1.0 - kSystemGamma) / kSystemGamma) / kPeak;
  for (size_t c = 0; c < 3; ++c) {
    const double scene = std::clamp(light[c] * gain, 0.0, 1.0);
    signal[c] = scene <= 1.0 / 12.0 ? std::sqrt(3.0 * scene) : kA * std::log(12.0 * scene - kB) + kC;
  }
  return signal;
}

std::array<double, 3> hlgToBt709(const std::array<double, 3>& signal) { return lightToBt709(hlgLight(signal)); }

std::array<double, 3> pqToBt709(const std::array<double, 3>& signal) {
  return lightToBt709({pqLight(signal[0]), pqLight(signal[1]), pqLight(signal[2])});
}

void writeHdrLuts(const std::filesystem::path& folder, int size) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) throw Fault(ExitCode::kOutput, "cannot make the folder '" + toName(folder) + "': " + error.message());
  writeLut(folder / "HDR_HLG.cube", size, hlgToBt709, "BT.2100 HLG, 1000 cd/m2, to BT.709");
  writeLut(folder / "HDR_PQ.cube", size, pqToBt709, "BT.2100 PQ to BT.709");
}

}  // namespace host
