#pragma once

#include <vector>

#include "apply/hdr_kernels.h"
#include "base/large_pages.h"
#include "base/zeroed_memory.h"

namespace Lumvane {

/// An allocator of memory that the system provides zeroed, so that a table of zeros need not be written.
template <class T>
struct ZeroMemory {
  using value_type = T;
  ZeroMemory() = default;
  template <class U>
  explicit ZeroMemory(const ZeroMemory<U>&) {}

  T* allocate(size_t count) {
    void* const memory = allocateZeroPages(count * sizeof(T));
    adviseLargePages(memory, count * sizeof(T));
    return static_cast<T*>(memory);
  }
  void deallocate(T* memory, size_t count) { freeZeroPages(memory, count * sizeof(T)); }

  /// Does nothing: the entry is already zero.
  template <class U>
  void construct(U*) {}

  bool operator==(const ZeroMemory&) const = default;
};

/// The result of an HDR LUT for every colour, indexed by cacheEntry; or empty. Resized only from empty: see ZeroMemory.
using HdrCache = std::vector<RGB8, ZeroMemory<RGB8>>;

}  // namespace Lumvane
