// Row kernels that convert between BGRA pixels and hue, saturation and value: the plain forms, which define the bits,
// and the vector forms.

#include "clarity/hsv_kernels.h"

#ifndef HWY_TARGET_INCLUDE  // once; the code after this block is compiled for each instruction set
#define HWY_TARGET_INCLUDE "clarity/hsv_kernels.cpp"

#include <algorithm>
#include <cmath>

namespace Lumvane {
namespace plain {
namespace {

constexpr float kEpsilon = 1.1920929e-07f;  // 2^-23; avoids division by 0 for black and grey
constexpr float kSectorsPerDegree = 0.016666668f;

// For each of the six sectors of the hue circle: which of v, lowest, falling, rising goes to bytes 0, 1, 2.
constexpr uint8_t kSectors[6][3] = {{1, 3, 0}, {1, 0, 2}, {3, 0, 1}, {0, 2, 1}, {0, 1, 3}, {2, 1, 0}};

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

void synthesisRow(const float* hue, const float* saturation, const float* value, const uint8_t* src, uint8_t* dst,
                  size_t pixels) {
  for (size_t i = 0; i < pixels; ++i, src += 4, dst += 4) {
    const float s = saturation[i];
    const float v = value[i];
    float c0 = v, c1 = v, c2 = v;
    if (s != 0.0f) {
      // The hue is 0 to 360. 360 degrees give slightly more than 6 sectors, which wraps to the start of the first one.
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

}  // namespace plain

const HsvKernels plainHsvKernels = {plain::valueRow, plain::analysisRow, plain::synthesisRow};

}  // namespace Lumvane

#endif

#include <hwy/foreach_target.h>  // must precede all vector code

#include "base/vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {
namespace {

#if LUMVANE_HAVE_VECTORS

// In bytes: 512 pixels, the number that the pipeline runs through all kernels at a time.
constexpr size_t kPrefetchDistance = 2048;

// byte / 255, rounded like the quotient. The reciprocal is in two parts. The product of a byte and the upper part, of 9
// bits, is exact, and the error of the product with the lower part is too small to change the rounding of their sum.
HWY_INLINE VF unitFromByte(VI byte) {
  const VF number = hn::ConvertTo(F(), byte);
  return hn::Add(hn::Mul(number, hn::Set(F(), 0x1.01p-8f)), hn::Mul(number, hn::Set(F(), 0x1.010102p-24f)));
}

void valueRow(const uint8_t* src, float* value, size_t pixels) {
  size_t i = 0;
  for (; i + kLanes <= pixels; i += kLanes) {
    fetchAhead(src + 4 * i, kPrefetchDistance);
    const VU bgra = loadPixels(src + 4 * i);
    const auto bytes = [](VU v) HWY_ATTR { return hn::BitCast(Bytes(), v); };
    // Byte 0 of each pixel is compared with the two bytes above it.
    const VBytes largest =
        hn::Max(bytes(bgra), hn::Max(bytes(hn::ShiftRight<8>(bgra)), bytes(hn::ShiftRight<16>(bgra))));
    hn::StoreU(unitFromByte(hn::And(hn::BitCast(I(), largest), hn::Set(I(), 0xFF))), F(), value + i);
  }
  plain::valueRow(src + 4 * i, value + i, pixels - i);
}

void analysisRow(const uint8_t* src, float saturationFactor, float* hue, float* saturation, float* value,
                 size_t pixels) {
  const VI lowByte = hn::Set(I(), 0xFF);
  const VF zero = hn::Zero(F()), one = hn::Set(F(), 1.0f), epsilon = hn::Set(F(), 0x1p-23f);
  const VF factor = hn::Set(F(), saturationFactor);
  size_t i = 0;
  for (; i + kLanes <= pixels; i += kLanes) {
    fetchAhead(src + 4 * i, kPrefetchDistance);
    const VI bgra = hn::BitCast(I(), loadPixels(src + 4 * i));  // one pixel per lane
    const VF b = unitFromByte(hn::And(bgra, lowByte));
    const VF g = unitFromByte(hn::And(hn::ShiftRight<8>(bgra), lowByte));
    const VF r = unitFromByte(hn::And(hn::ShiftRight<16>(bgra), lowByte));
    const VF v = hn::Max(r, hn::Max(g, b));
    const VF diff = hn::Sub(v, hn::Min(r, hn::Min(g, b)));
    const VF s = hn::Div(diff, hn::Add(v, epsilon));
    const VF k = hn::Div(hn::Set(F(), 60.0f), hn::Add(diff, epsilon));
    const auto isRed = hn::Eq(v, r), isGreen = hn::Eq(v, g);
    const VF across = hn::IfThenElse(isRed, hn::Sub(g, b), hn::IfThenElse(isGreen, hn::Sub(b, r), hn::Sub(r, g)));
    // The plain form adds nothing for red. Adding 0 gives the same, because equal colours differ by +0.
    const VF start = hn::IfThenElse(isRed, zero, hn::IfThenElse(isGreen, hn::Set(F(), 120.0f), hn::Set(F(), 240.0f)));
    const VF h = hn::Add(hn::Mul(across, k), start);
    hn::StoreU(hn::Add(h, hn::IfThenElseZero(hn::Lt(h, zero), hn::Set(F(), 360.0f))), F(), hue + i);
    hn::StoreU(hn::Min(hn::Max(hn::Mul(factor, s), zero), one), F(), saturation + i);
    hn::StoreU(v, F(), value + i);
  }
  plain::analysisRow(src + 4 * i, saturationFactor, hue + i, saturation + i, value + i, pixels - i);
}

// Puts the bytes of each lane (the value, the lowest colour, the middle colour, alpha) in the order that the sector of
// the hue requires. Bytes 0 to 2 are three consecutive entries of a cyclic sequence: one sequence for even sectors, one
// for odd.
HWY_INLINE VU arranged(VU colours, VI sectors) {
  alignas(16) static constexpr uint8_t kToLane[16] = {0, 0, 0, 128, 4, 4, 4, 128, 8, 8, 8, 128, 12, 12, 12, 128};
  alignas(16) static constexpr uint8_t kFirst[16] = {0, 5, 1, 6, 2, 7};
  alignas(16) static constexpr uint8_t kAlong[16] = {0, 1, 2, 10, 0, 1, 2, 10, 0, 1, 2, 10, 0, 1, 2, 10};
  alignas(16) static constexpr uint8_t kCycles[16] = {1, 2, 0, 1, 2, 1, 0, 2, 1, 0, 3};
  alignas(16) static constexpr uint8_t kLane[16] = {0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8, 8, 12, 12, 12, 12};
  const auto block = [](const uint8_t* bytes) HWY_ATTR { return hn::LoadDup128(Bytes(), bytes); };
  const VBytes sector = hn::BitCast(Bytes(), shuffled(hn::BitCast(U(), sectors), kToLane));
  const VBytes place = hn::Add(hn::TableLookupBytes(block(kFirst), sector), block(kAlong));
  const VBytes from = hn::Add(hn::TableLookupBytes(block(kCycles), place), block(kLane));
  return hn::BitCast(U(), hn::TableLookupBytes(hn::BitCast(Bytes(), colours), from));
}

void synthesisRow(const float* hue, const float* saturation, const float* value, const uint8_t* src, uint8_t* dst,
                  size_t pixels) {
  const VF one = hn::Set(F(), 1.0f), turn = hn::Set(F(), 6.0f);
  const auto toByte = [&](VF colour) HWY_ATTR {
    // The colour is from 0 to 1 here and needs no clamp.
    return hn::BitCast(U(), truncated(hn::Add(hn::Mul(colour, hn::Set(F(), 255.0f)), hn::Set(F(), 0.5f))));
  };
  size_t i = 0;
  for (; i + kLanes <= pixels; i += kLanes) {
    fetchAhead(dst + 4 * i, kPrefetchDistance);
    const VF s = hn::LoadU(F(), saturation + i);
    const VF v = hn::LoadU(F(), value + i);
    const VF hexagon = hn::Mul(hn::LoadU(F(), hue + i), hn::Set(F(), 0.016666668f));
    const VF x = hn::IfThenElse(hn::Ge(hexagon, turn), hn::Sub(hexagon, turn), hexagon);
    const VI sector = truncated(x);
    const VF f = hn::Sub(x, hn::ConvertTo(F(), sector));
    const auto isOdd = hn::RebindMask(F(), hn::TestBit(sector, hn::Set(I(), 1)));
    const VF share = hn::IfThenElse(isOdd, f, hn::Sub(one, f));
    // With saturation 0, these two equal the value, as they should.
    const VF lowest = hn::Mul(hn::Sub(one, s), v);
    const VF middle = hn::Mul(hn::Sub(one, hn::Mul(share, s)), v);
    const VU alpha = hn::AndNot(hn::Set(U(), 0x00FFFFFF), loadPixels(src + 4 * i));
    const VU colours =
        hn::Or(hn::Or(toByte(v), hn::ShiftLeft<8>(toByte(lowest))), hn::Or(hn::ShiftLeft<16>(toByte(middle)), alpha));
    storePixels(arranged(colours, sector), dst + 4 * i);
  }
  plain::synthesisRow(hue + i, saturation + i, value + i, src + 4 * i, dst + 4 * i, pixels - i);
}

#else
using namespace plain;
#endif

HsvKernels kernels() { return {valueRow, analysisRow, synthesisRow}; }

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

LUMVANE_DISPATCH(HsvKernels, hsvKernels)
