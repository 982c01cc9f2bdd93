#pragma once

#include <cstddef>
#include <cstdint>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace Lumvane {

/// Asks the system for large pages for newly allocated memory; does nothing where there are none. A table that is read at
/// random misses the TLB at nearly every read of ordinary pages, and each of those takes a page fault of its own.
inline void adviseLargePages([[maybe_unused]] void* memory, [[maybe_unused]] size_t bytes) {
#ifdef MADV_HUGEPAGE
  constexpr uintptr_t kPage = uintptr_t{2} << 20;  // of x86-64 and most ARM systems; the advice holds for any size
  const auto address = reinterpret_cast<uintptr_t>(memory);
  const uintptr_t first = (address + kPage - 1) / kPage * kPage, end = (address + bytes) / kPage * kPage;
  if (first < end) madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
#endif
}

}  // namespace Lumvane
