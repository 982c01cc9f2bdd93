#include <memory>

#include "base/default_float_mode.h"
#include "base/keep_loaded.h"
#include "base/unload.h"
#include "hdr/hdr_frame.h"
#include "hdr/hdr_load.h"
#include "lumvane.h"

using Lumvane::VideoAdjustColor;

void* CreateVideoAdjustColor(const char16_t* lutDirectory, int32_t reservedMode, int32_t limitedRange, int32_t usePq,
                             int32_t width, int32_t height) {
  const Lumvane::DefaultFloatMode floatMode;
  Lumvane::keepLoaded();
  Lumvane::watchForExit();
  return Lumvane::createVideoAdjustColor(lutDirectory, reservedMode, limitedRange, usePq, width, height).release();
}

bool VideoAdjustColorProcess(void* handle, const uint8_t* srcPlane0, const uint8_t* srcPlane1, const uint8_t* srcPlane2,
                             int32_t stride0, int32_t stride1, int32_t stride2, int32_t /*reservedA*/,
                             int32_t /*reservedB*/, uint8_t* dstPlane0, uint8_t* dstPlane1, uint8_t* dstPlane2) {
  const Lumvane::DefaultFloatMode floatMode;
  return Lumvane::adjustFrame(*static_cast<VideoAdjustColor*>(handle), srcPlane0, srcPlane1, srcPlane2, stride0,
                              stride1, stride2, dstPlane0, dstPlane1, dstPlane2);
}

void DestroyVideoAdjustColor(void* handle) { delete static_cast<VideoAdjustColor*>(handle); }
