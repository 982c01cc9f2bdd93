#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>

// Windows' C library takes large blocks from the system, zeroed. The address sanitizer checks only memory from malloc.
#if !defined(_WIN32) && !defined(LUMVANE_SANITIZED)
#include <sys/mman.h>
#define LUMVANE_MAPS_PAGES 1
#endif

namespace Lumvane {

/// Allocates an object's memory, zeroed so that its padding is zero as well. Classes use these two functions for their
/// operators new and delete. For GCC this needs -flifetime-dse=1: it would take the zeros for unused otherwise.
inline void* allocateZeroed(size_t bytes) {
  void* const memory = std::calloc(1, bytes);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
inline void freeZeroed(void* memory) { std::free(memory); }

/// Allocates zero pages of the system: they take up memory only once they are used, even if the process has freed as
/// much before, which the C library would clear instead.
inline void* allocateZeroPages(size_t bytes) {
#ifdef LUMVANE_MAPS_PAGES
  void* const pages =
      mmap(nullptr, std::max(bytes, size_t{1}), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (pages == MAP_FAILED) throw std::bad_alloc();
  return pages;
#else
  return allocateZeroed(bytes);
#endif
}

inline void freeZeroPages(void* pages, [[maybe_unused]] size_t bytes) {
#ifdef LUMVANE_MAPS_PAGES
  munmap(pages, std::max(bytes, size_t{1}));
#else
  freeZeroed(pages);
#endif
}

struct FreeZeroPages {
  size_t bytes = 0;
  void operator()(void* pages) const { freeZeroPages(pages, bytes); }
};

/// An array of bytes in zero pages.
using ZeroPages = std::unique_ptr<uint8_t[], FreeZeroPages>;
inline ZeroPages zeroPages(size_t bytes) {
  return ZeroPages(static_cast<uint8_t*>(allocateZeroPages(bytes)), FreeZeroPages{bytes});
}

}  // namespace Lumvane
