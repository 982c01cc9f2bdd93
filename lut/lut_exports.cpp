#include <memory>

#include "base/default_float_mode.h"
#include "base/keep_loaded.h"
#include "base/unload.h"
#include "lumvane.h"
#include "lut/color_lut3d_adjust_effect.h"

using Lumvane::ColorLut3dAdjustEffect;

void* Create3DLutColorAdjustEffect(const char16_t* lutPath, int32_t width, int32_t height) {
  if (lutPath == nullptr) return nullptr;
  const Lumvane::DefaultFloatMode floatMode;
  Lumvane::keepLoaded();
  Lumvane::watchForExit();
  auto effect = std::make_unique<ColorLut3dAdjustEffect>(lutPath, width, height);
  return effect->init() ? effect.release() : nullptr;
}

void Lut3DColorAdjustEffectProcess(void* handle, uint8_t* dst, int32_t width, int32_t height, int32_t dstStride,
                                   const uint8_t* src, int32_t srcWidth, int32_t srcHeight, int32_t srcStride,
                                   int32_t strength) {
  if (handle == nullptr) return;
  const Lumvane::DefaultFloatMode floatMode;
  auto& effect = *static_cast<ColorLut3dAdjustEffect*>(handle);
  effect.strengthPercent = strength;
  effect.process(dst, width, height, dstStride, src, srcWidth, srcHeight, srcStride);
}

void Destory3DLutColorAdjustEffect(void* handle) { delete static_cast<ColorLut3dAdjustEffect*>(handle); }
