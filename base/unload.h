#pragma once

#include <atomic>

namespace Lumvane {

/// True once the process has begun to exit. exit() waits for parallel loops, but not for whole frames, so the data they
/// read is released only when the library is unloaded.
inline std::atomic<bool> processExiting = false;

/// Makes exit() set processExiting. To be called whenever a handle is created, since loading the library registers
/// nothing.
inline void watchForExit() {
  static const struct Watcher {
    ~Watcher() { processExiting = true; }
  } watcher;
}

/// Marks a function that runs when the library is unloaded. dlclose() runs it before static destructors, exit() after
/// them; `processExiting` tells which. On Windows the library is not unloaded once it has anything to release: see
/// base/keep_loaded.h.
#ifdef _WIN32
#define LUMVANE_WHEN_UNLOADED [[maybe_unused]]
#else
#define LUMVANE_WHEN_UNLOADED [[gnu::destructor]]
#endif

}  // namespace Lumvane
