#pragma once

#ifdef __SSE2__
#include <xmmintrin.h>
#else
#include <cfenv>
#endif

namespace Lumvane {

/// While one of these lives, the calling thread computes with floats as a program does that has just started: rounding to
/// the nearest, with denormals, and without traps. Hosts set other modes, and threads of a pool have the mode of whoever
/// made the pool; bytes must not depend on that, and a trap would end the host. Behind it the mode is as before, and no
/// exception flag is raised.
///
/// On x86 by the control register itself: <cfenv> also sets the mode of the older x87 unit, where nothing is computed that
/// could be rounded, and mingw-w64's leaves the one that counts as it is.
///
/// Compilers may take arithmetic of the same function out of its life: what is to be computed under it belongs into
/// functions of another file.
class DefaultFloatMode {
 public:
#ifdef __SSE2__
  DefaultFloatMode() : before_(_mm_getcsr()) { _mm_setcsr(kTrapsMasked); }
  ~DefaultFloatMode() { _mm_setcsr(before_); }
#else
  DefaultFloatMode() {
    std::fegetenv(&before_);
    std::fesetenv(FE_DFL_ENV);
  }
  ~DefaultFloatMode() { std::fesetenv(&before_); }
#endif
  DefaultFloatMode(const DefaultFloatMode&) = delete;
  DefaultFloatMode& operator=(const DefaultFloatMode&) = delete;

 private:
#ifdef __SSE2__
  static constexpr unsigned kTrapsMasked = 0x1F80;  // and all other bits 0
  unsigned before_;
#else
  std::fenv_t before_;
#endif
};

}  // namespace Lumvane
