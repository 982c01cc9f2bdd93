#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "apply/lattice.h"
#include "base/band_rows.h"
#include "base/zeroed_memory.h"

namespace Lumvane {

/// Chooses how large frames are mapped: through the cache or by interpolation in the lattice, with the same result. The
/// cache is faster for pictures with few colours, the lattice if nearly every pixel would wait for memory. The first
/// four of every 250 frames are timed, two each way, and the others use the faster one.
class MappingTimes {
 public:
  using Duration = std::chrono::steady_clock::duration;

  bool interpolates() const { return frame_ < 2 * kTrials ? frame_ >= kTrials : latticeIsFaster_; }

  /// Records the time of a frame; to be called after each one.
  void record(Duration time) {
    if (frame_ < 2 * kTrials) {
      Duration& least = least_[frame_ / kTrials];
      least = frame_ % kTrials == 0 ? time : std::min(least, time);
      latticeIsFaster_ = least_[1] < least_[0];
    }
    frame_ = (frame_ + 1) % kCycle;
  }

 private:
  static constexpr int kTrials = 2, kCycle = 250;  // frames
  int frame_ = 0;
  bool latticeIsFaster_ = false;
  Duration least_[2] = {};
};

/// The object behind an HDR handle: see CreateVideoAdjustColor.
struct VideoAdjustColor {
  int32_t workLatticeSize = 0;   ///< points per axis of the current frame's LUT
  float fraction[256] = {};      ///< for a byte value: its position inside its lattice cell
  int32_t cell[256] = {};        ///< for a byte value: the lattice index at the lower end of its cell
  int32_t latticeSize = 0;       ///< points per axis of the last LUT file that this object read; 0 for none
  ZeroPages rgbaIn;              ///< width * height BGRA pixels: the frame before the LUT
  ZeroPages rgbaOut;             ///< the same after it; a pass over a large frame uses four rows of each band
  HdrLattice lattice = nullptr;  ///< of the current frame; shared
  int32_t width = 0;
  int32_t height = 0;
  bool loadOk = false;  ///< result of the last load
  int32_t bandCount = kBands;
  std::u16string hlgPath;
  std::u16string pqPath;
  int32_t reservedMode = 0;
  int32_t limitedRange = 0;  ///< not 0: limited-range YV12 in and out; 0: full range
  int32_t usePq = 0;         ///< not 0: PQ; 0: HLG
  MappingTimes mappings;

  static void* operator new(size_t bytes) { return allocateZeroed(bytes); }
  static void operator delete(void* memory) { freeZeroed(memory); }
};

}  // namespace Lumvane
