#pragma once

#include <cstdint>
#include <cstdlib>
#include <new>
#include <vector>

#include "apply/hdr_kernels.h"

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace Lumvane {

/// Asks the system for large pages for newly allocated memory; does nothing where there are none. A cache is read at
/// random, and with ordinary pages nearly every pixel misses the TLB.
inline void adviseLargePages([[maybe_unused]] void* memory, [[maybe_unused]] size_t bytes) {
#ifdef MADV_HUGEPAGE
  constexpr uintptr_t kPage = uintptr_t{2} << 20;  // of x86-64 and most ARM systems; the advice holds for any size
  const auto address = reinterpret_cast<uintptr_t>(memory);
  const uintptr_t first = (address + kPage - 1) / kPage * kPage, end = (address + bytes) / kPage * kPage;
  if (first < end) madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
#endif
}

/// Memory that the system hands out zeroed: a table of zeros needs no write.
template <class T>
struct ZeroMemory {
  using value_type = T;
  ZeroMemory() = default;
  template <class U>
  explicit ZeroMemory(const ZeroMemory<U>&) {}

  T* allocate(size_t count) {
    void* memory = std::calloc(count, sizeof(T));
    if (memory == nullptr) throw std::bad_alloc();
    adviseLargePages(memory, count * sizeof(T));
    return static_cast<T*>(memory);
  }
  void deallocate(T* memory, size_t) { std::free(memory); }

  /// Entries without a value are already zero.
  template <class U>
  void construct(U*) {}

  bool operator==(const ZeroMemory&) const = default;
};

/// The result of an HDR LUT for every colour, by cacheEntry; or empty. Resized only once, from empty: see ZeroMemory.
using HdrCache = std::vector<RGB8, ZeroMemory<RGB8>>;

}  // namespace Lumvane
