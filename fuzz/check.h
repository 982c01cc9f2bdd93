#pragma once

#include <cstdio>
#include <cstdlib>

namespace fuzz {

/// Ends the process with a message where something does not hold that has to: fuzzers keep the input then.
inline void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::abort();
}

}  // namespace fuzz
