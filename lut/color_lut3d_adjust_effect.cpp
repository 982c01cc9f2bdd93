#include "lut/color_lut3d_adjust_effect.h"

#include <algorithm>

namespace Lumvane {

ColorLut3dAdjustEffect::ColorLut3dAdjustEffect(const char16_t* path, int32_t frameWidth, int32_t frameHeight)
    : lutPath(path), width(frameWidth), height(frameHeight) {}

bool ColorLut3dAdjustEffect::init() {
  if (!cubeLut) cubeLut = std::make_unique<CubeLut>();
  if (lutPath.empty()) return false;
  return cubeLut->load(lutPath);
}

bool ColorLut3dAdjustEffect::process(uint8_t* dst, int32_t frameWidth, int32_t frameHeight, int32_t dstStride,
                                     const uint8_t* src, int32_t /*srcWidth*/, int32_t /*srcHeight*/,
                                     int32_t srcStride) {
  if (dst == nullptr || src == nullptr) return false;
  const int32_t s = std::clamp(strengthPercent, 0, 100) * 255 / 100;
  if (s == 0 || frameWidth <= 0 || frameHeight <= 0) return true;
  cubeLut->apply(dst, dstStride, src, frameWidth, frameHeight, srcStride, 255 - s);
  return true;
}

}  // namespace Lumvane
