// The row kernels in their plain form, which defines what they give.

#include <algorithm>
#include <cmath>

#include "clarity/clarity_rows.h"
#include "clarity/exponential_table.h"

namespace Lumvane::plain {
namespace {

constexpr float kEpsilon = 1.1920929e-07f;  // 2^-23; keeps black and grey from dividing by 0
constexpr float kSectorsPerDegree = 0.016666668f;

// For each of the six sectors of the hue circle: which of the values v, lowest, falling, rising goes to bytes 0, 1, 2.
constexpr uint8_t kSectors[6][3] = {{1, 3, 0}, {1, 0, 2}, {3, 0, 1}, {0, 2, 1}, {0, 1, 3}, {2, 1, 0}};

// The exponential of x from -32 to 0, rounded correctly to single precision: by way of double precision, from the entry of
// the table that is nearest and a Taylor series for what remains, at most 1 / 512. C libraries differ here: glibc 2.36's
// single-precision function is off in the last bit now and then, others' double-precision one by more than its last bit.
float exponential(float x) {
  constexpr double kSteps = ExponentialTable::kStepsPerUnit;
  const int step = static_cast<int>(std::min(double{ExponentialTable::kSize - 1}, -double{x} * kSteps + 0.5));
  const double r = double{x} + step / kSteps;  // exact
  const double growth = r + r * r * (1.0 / 2 + r * (1.0 / 6 + r * (1.0 / 24 + r / 120)));
  const double base = kExponentials.data()[step];
  return static_cast<float>(base + base * growth);
}

uint8_t toByte(float colour) { return static_cast<uint8_t>(std::clamp(colour, 0.0f, 1.0f) * 255.0f + 0.5f); }

}  // namespace

void valueRow(const uint8_t* src, float* value, size_t pixels) {
  for (size_t i = 0; i < pixels; ++i, src += 4) {
    value[i] = static_cast<float>(std::max({src[0], src[1], src[2]})) / 255.0f;
  }
}

void analysisRow(const uint8_t* src, float saturationFactor, float* hue, float* saturation, float* value,
                 size_t pixels) {
  for (size_t i = 0; i < pixels; ++i, src += 4) {
    const float r = static_cast<float>(src[2]) / 255.0f;
    const float g = static_cast<float>(src[1]) / 255.0f;
    const float b = static_cast<float>(src[0]) / 255.0f;
    const float v = std::max({r, g, b});
    const float diff = v - std::min({r, g, b});
    const float s = diff / (v + kEpsilon);
    const float k = 60.0f / (diff + kEpsilon);
    float h;
    if (v == r) {
      h = (g - b) * k;
    } else if (v == g) {
      h = (b - r) * k + 120.0f;
    } else {
      h = (r - g) * k + 240.0f;
    }
    if (h < 0.0f) h += 360.0f;
    hue[i] = h;
    saturation[i] = std::clamp(saturationFactor * s, 0.0f, 1.0f);
    value[i] = v;
  }
}

void detailRow(const float* fine, const float* coarse, float coefficient, float gain, const float* base, float* out,
               size_t samples) {
  for (size_t i = 0; i < samples; ++i) {
    const float d = fine[i] - coarse[i];
    const float w = exponential(-(d * d * coefficient));
    out[i] = base[i] + ((d * gain) * w + d);
  }
}

void blendRow(const float* value, float valueWeight, const float* enhanced, float enhancedWeight, float* out,
              size_t samples) {
  for (size_t i = 0; i < samples; ++i) {
    const double share = double{std::clamp(enhanced[i], 0.0f, 1.0f)} * double{enhancedWeight};
    out[i] = std::clamp(static_cast<float>(double{value[i]} * double{valueWeight} + share), 0.0f, 1.0f);
  }
}

void synthesisRow(const float* hue, const float* saturation, const float* value, const uint8_t* src, uint8_t* dst,
                  size_t pixels) {
  for (size_t i = 0; i < pixels; ++i, src += 4, dst += 4) {
    const float s = saturation[i];
    const float v = value[i];
    float c0 = v, c1 = v, c2 = v;
    if (s != 0.0f) {
      // The hue lies in 0 to 360. 360 degrees make a little more than 6 sectors, which is the start of the first one.
      const float x = std::fmod(hue[i] * kSectorsPerDegree, 6.0f);
      const int sector = static_cast<int>(x);
      const float f = x - static_cast<float>(sector);
      const float tab[4] = {v, (1.0f - s) * v, (1.0f - f * s) * v, (1.0f - (1.0f - f) * s) * v};
      c0 = tab[kSectors[sector][0]];
      c1 = tab[kSectors[sector][1]];
      c2 = tab[kSectors[sector][2]];
    }
    dst[0] = toByte(c0);
    dst[1] = toByte(c1);
    dst[2] = toByte(c2);
    dst[3] = src[3];
  }
}

}  // namespace Lumvane::plain
