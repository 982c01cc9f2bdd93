#pragma once

#include <atomic>

namespace Lumvane {

/// Set once the process has begun to end. exit() waits for the loops of frames, but not for the frames: what they read is
/// released only when the library is unloaded.
inline std::atomic<bool> processEnds = false;
inline const struct ProcessEnd {
  ~ProcessEnd() { processEnds = true; }
} processEnd;

/// For a function that is to run when the library is unloaded. It runs before the destructors of objects then, but after
/// them when the process ends, so that `processEnds` tells the two apart. On Windows the library is not unloaded once it
/// has anything to release: see base/keep_loaded.h.
#ifdef _WIN32
#define LUMVANE_WHEN_UNLOADED [[maybe_unused]]
#else
#define LUMVANE_WHEN_UNLOADED [[gnu::destructor]]
#endif

/// An object that nothing destroys, and whose construction is no work at run time.
template <class T>
union Lasting {
  T object;
  constexpr Lasting() : object() {}
  constexpr ~Lasting() {}
};

}  // namespace Lumvane
