#pragma once

#ifdef __SSE2__
#include <xmmintrin.h>
#else
#include <cfenv>
#endif

namespace Lumvane {

/// During its lifetime the calling thread uses the default floating-point mode of a new program: round to nearest,
/// denormals kept, no traps. Hosts set other modes, and pool threads inherit the mode of the thread that created them;
/// output must not depend on that, and a trap would end the host. The destructor restores the mode and the exception
/// flags.
///
/// On x86 this sets MXCSR directly: <cfenv> also sets the mode of the older x87 unit, which computes nothing here that
/// could be rounded, and mingw-w64's does not set MXCSR.
///
/// Compilers may move arithmetic of the same function out of this lifetime: code that needs the mode belongs in
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
