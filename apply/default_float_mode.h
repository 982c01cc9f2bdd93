#pragma once

#include <cfenv>

namespace Lumvane {

/// While one of these lives, the calling thread computes with floats as a program does that has just started: rounding to
/// the nearest, with denormals, and without traps. Hosts set other modes, and threads of a pool have the mode of whoever
/// made the pool; bytes must not depend on that, and a trap would end the host. Behind it the mode is as before, and no
/// exception flag is raised.
///
/// Compilers may take arithmetic of the same function out of its life: what is to be computed under it belongs into
/// functions of another file.
class DefaultFloatMode {
 public:
  DefaultFloatMode() {
    std::fegetenv(&before_);
    std::fesetenv(FE_DFL_ENV);
  }
  ~DefaultFloatMode() { std::fesetenv(&before_); }
  DefaultFloatMode(const DefaultFloatMode&) = delete;
  DefaultFloatMode& operator=(const DefaultFloatMode&) = delete;

 private:
  std::fenv_t before_;
};

}  // namespace Lumvane
