#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "base/zeroed_memory.h"
#include "lut/cube_lut.h"

namespace Lumvane {

/// The object behind a LUT grading handle: a table and a strength.
class ColorLut3dAdjustEffect {
 public:
  ColorLut3dAdjustEffect(const char16_t* path, int32_t frameWidth, int32_t frameHeight);
  virtual ~ColorLut3dAdjustEffect() = default;
  static void* operator new(size_t bytes) { return allocateZeroed(bytes); }
  static void operator delete(void* memory) { freeZeroed(memory); }

  std::unique_ptr<CubeLut> cubeLut;
  std::u16string lutPath;
  int32_t strengthPercent = 100;  ///< of the current frame; any value, see process
  int32_t width;                  ///< as passed by the host at creation; each frame has its own
  int32_t height;

  /// Loads the table from `lutPath`; false if that fails or the path is empty.
  bool init();

  /// Grades one frame at `strengthPercent`: see Lut3DColorAdjustEffectProcess. False only when a buffer is null.
  bool process(uint8_t* dst, int32_t frameWidth, int32_t frameHeight, int32_t dstStride, const uint8_t* src,
               int32_t srcWidth, int32_t srcHeight, int32_t srcStride);
};

}  // namespace Lumvane
