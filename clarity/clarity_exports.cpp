#include <memory>

#include "base/default_float_mode.h"
#include "base/keep_loaded.h"
#include "base/unload.h"
#include "clarity/nle_pure_c_clarity.h"
#include "lumvane.h"

using Lumvane::NLEAdjustColorEffect;
using Lumvane::NLEFrameDesc;
using Lumvane::NLEPureCClarity;

void* CreateNLEPureCClarity(int32_t width, int32_t height, int32_t reserved, int32_t saturation, int32_t intensity) {
  Lumvane::keepLoaded();
  Lumvane::watchForExit();
  std::unique_ptr<NLEAdjustColorEffect> effect = std::make_unique<NLEPureCClarity>(nullptr);
  return effect->Init(width, height, reserved, saturation, intensity) == 0 ? effect.release() : nullptr;
}

int32_t NLEPureCClarityProcess(void* handle, uint8_t* dst, int32_t width, int32_t height, int32_t dstStride,
                               const uint8_t* src, int32_t srcWidth, int32_t srcHeight, int32_t srcStride) {
  if (handle == nullptr) return 0;
  const Lumvane::DefaultFloatMode floatMode;
  const NLEFrameDesc blank;
  const NLEFrameDesc srcDesc = {const_cast<uint8_t*>(src), srcWidth, srcHeight, srcStride};
  const NLEFrameDesc dstDesc = {dst, width, height, dstStride};
  auto* effect = static_cast<NLEAdjustColorEffect*>(handle);
  return effect->Process(blank, srcDesc, dstDesc, width, height, dstStride) == 0 ? 1 : 0;
}

void DestoryNLEPureCClarity(void* handle) { delete static_cast<NLEAdjustColorEffect*>(handle); }
