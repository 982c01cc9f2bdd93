#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "apply/lattice.h"
#include "base/zeroed_memory.h"

namespace Lumvane {

/// The object behind a video colour adjust handle: see CreateVideoAdjustColor.
struct VideoAdjustColor {
  int32_t workLatticeSize = 0;         ///< points per axis of the LUT of the frame at hand
  float fraction[256] = {};            ///< for a byte: its position inside its lattice cell
  int32_t cell[256] = {};              ///< for a byte: the lattice index at the lower end of its cell
  int32_t latticeSize = 0;             ///< points per axis of the LUT file that this object read last; 0 for none
  std::unique_ptr<uint8_t[]> rgbaIn;   ///< width * height BGRA pixels: the frame ahead of the LUT
  std::unique_ptr<uint8_t[]> rgbaOut;  ///< the same behind it
  HdrLattice lattice = nullptr;        ///< of the frame at hand; shared
  int32_t width = 0;
  int32_t height = 0;
  bool loadOk = false;  ///< of the load under way
  int32_t bandCount = 8;
  std::u16string hlgPath;
  std::u16string pqPath;
  int32_t reservedMode = 0;
  int32_t limitedRange = 0;  ///< not 0: limited-range YV12 in and out; 0: full range
  int32_t usePq = 0;         ///< not 0: PQ; 0: HLG

  static void* operator new(size_t bytes) { return allocateZeroed(bytes); }
  static void operator delete(void* memory) { freeZeroed(memory); }
};

}  // namespace Lumvane
