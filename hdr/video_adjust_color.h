#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "apply/lattice.h"
#include "base/zeroed_memory.h"

namespace Lumvane {

/// Which way large frames are mapped: through the cache or by interpolation of the lattice, which give the same bytes. A
/// picture of few colours takes less time through the cache; of one in which each pixel waits for memory it is the lattice.
/// So now and then two frames go either way, and the faster one takes those that follow.
class MappingTimes {
 public:
  using Duration = std::chrono::steady_clock::duration;

  bool interpolates() const { return frame_ < 2 * kTried ? frame_ >= kTried : latticeIsFaster_; }

  /// To be called after each frame.
  void took(Duration time) {
    if (frame_ < 2 * kTried) {
      Duration& least = least_[frame_ / kTried];
      least = frame_ % kTried == 0 ? time : std::min(least, time);
      latticeIsFaster_ = least_[1] < least_[0];
    }
    frame_ = (frame_ + 1) % kCycle;
  }

 private:
  static constexpr int kTried = 2, kCycle = 250;  // frames
  int frame_ = 0;
  bool latticeIsFaster_ = false;
  Duration least_[2] = {};
};

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
  MappingTimes mappings;

  static void* operator new(size_t bytes) { return allocateZeroed(bytes); }
  static void operator delete(void* memory) { freeZeroed(memory); }
};

}  // namespace Lumvane
