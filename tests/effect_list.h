// The list of effects, as a host calls them: tests and benchmarks that do the same with each go through it.
#pragma once

#include <cstdint>
#include <string>

#include "lumvane.h"

namespace test {

/// The functions of lumvane.h, either linked or looked up by name.
struct Library {
#define LUMVANE_EXPORT(name) decltype(&::name) name = nullptr;
#include "cmake/exports.inc"
#undef LUMVANE_EXPORT
};

#ifndef LUMVANE_TEST_NOT_LINKED
inline const Library kLinked = {
#define LUMVANE_EXPORT(name) ::name,
#include "cmake/exports.inc"
#undef LUMVANE_EXPORT
};
#endif

/// The pixels of a frame, not owned: BGRA in plane 0, or the planes Y, V and U of YV12. Strides are in bytes.
struct Pixels {
  uint8_t* plane[3];
  int stride[3];
};

/// One effect. A variant, from 0 to `variants` - 1, stands for a LUT file and the settings.
struct Effect {
  const char* name;
  bool isYv12;  ///< frames are YV12, not BGRA
  enum { kPacked, kTopDown, kAnyStride } strides;
  int variants;
  /// Returns an object for frames of this size. `luts` is a folder with the files of LutFolder; for HDR, only the first
  /// object of the process reads it.
  void* (*create)(const Library& lib, const std::u16string& luts, int variant, int width, int height);
  /// Renders a frame of that size; false if it is refused. HDR uses the strides of `dst` for both frames.
  bool (*render)(const Library& lib, void* object, int variant, const Pixels& dst, const Pixels& src, int width,
                 int height);
  void (*destroy)(const Library& lib, void* object);
};

inline const Effect kEffects[] = {
    {"LUT", false, Effect::kAnyStride, 4,
     [](const Library& lib, const std::u16string& luts, int variant, int width, int height) {
       const char16_t* const files[] = {u"/look.cube", u"/look.cube", u"/look.3dl", u"/tiny.cube"};
       return lib.Create3DLutColorAdjustEffect((luts + files[variant]).c_str(), width, height);
     },
     [](const Library& lib, void* object, int variant, const Pixels& dst, const Pixels& src, int width, int height) {
       lib.Lut3DColorAdjustEffectProcess(object, dst.plane[0], width, height, dst.stride[0], src.plane[0], 0, 0,
                                         src.stride[0], variant == 1 ? 40 : 100);
       return true;
     },
     [](const Library& lib, void* object) { lib.Destory3DLutColorAdjustEffect(object); }},
    {"clarity", false, Effect::kTopDown, 1,
     [](const Library& lib, const std::u16string&, int, int width, int height) {
       return lib.CreateNLEPureCClarity(width, height, 0, 20, 70);
     },
     [](const Library& lib, void* object, int, const Pixels& dst, const Pixels& src, int width, int height) {
       return lib.NLEPureCClarityProcess(object, dst.plane[0], width, height, dst.stride[0], src.plane[0], 0, 0,
                                         src.stride[0]) == 1;
     },
     [](const Library& lib, void* object) { lib.DestoryNLEPureCClarity(object); }},
    {"white balance", false, Effect::kPacked, 1,  // has no objects
     [](const Library&, const std::u16string&, int, int, int) -> void* {
       static char none;
       return &none;
     },
     [](const Library& lib, void*, int, const Pixels& dst, const Pixels& src, int width, int height) {
       return lib.WhiteBalanceFun(src.plane[0], dst.plane[0], 0.0f, 0.0f, 0.0f, 0.2f, -0.05f, width, height);
     },
     [](const Library&, void*) {}},
    {"HDR", true, Effect::kAnyStride, 4,  // HLG and PQ, limited and full range
     [](const Library& lib, const std::u16string& luts, int variant, int width, int height) {
       return lib.CreateVideoAdjustColor(luts.c_str(), 0, variant % 2 == 0, variant / 2, width, height);
     },
     [](const Library& lib, void* object, int, const Pixels& dst, const Pixels& src, int, int) {
       return lib.VideoAdjustColorProcess(object, src.plane[0], src.plane[1], src.plane[2], dst.stride[0],
                                          dst.stride[1], dst.stride[2], 0, 0, dst.plane[0], dst.plane[1], dst.plane[2]);
     },
     [](const Library& lib, void* object) { lib.DestroyVideoAdjustColor(object); }},
};

}  // namespace test
