#pragma once

#include <atomic>

namespace Lumvane {

/// Set once the process has begun to end. exit() does not wait for other threads, and frames may be in work on them: what
/// they read is released when the library is unloaded, and then alone.
inline std::atomic<bool> processEnds = false;
inline const struct ProcessEnd {
  ~ProcessEnd() { processEnds = true; }
} processEnd;

/// For a function that is to run when the library is unloaded: it runs ahead of the destructors of objects then, and behind
/// them where the process ends. So that `processEnds` tells it which of the two it is. On Windows nothing is unloaded
/// that has anything to release: see base/keep_loaded.h.
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
