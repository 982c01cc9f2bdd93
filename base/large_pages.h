#pragma once

#include <cstddef>
#include <cstdint>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace Lumvane {

/// Asks the system for large pages for newly allocated memory, where it has them. With ordinary pages, a table that is
/// read at random misses the TLB at nearly every read, and each page costs a page fault.
inline void adviseLargePages([[maybe_unused]] void* memory, [[maybe_unused]] size_t bytes) {
#ifdef MADV_HUGEPAGE
  constexpr uintptr_t kPage = uintptr_t{2} << 20;  // of x86-64 and most ARM systems; other sizes work as well
  const auto address = reinterpret_cast<uintptr_t>(memory);
  const uintptr_t first = (address + kPage - 1) / kPage * kPage, end = (address + bytes) / kPage * kPage;
  if (first < end) madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
#endif
}

}  // namespace Lumvane
