#pragma once

#include <cstdlib>
#include <new>

namespace Lumvane {

/// Allocates an object's memory, zeroed so that its padding is zero as well. Classes use these two functions for their
/// operators new and delete.
inline void* allocateZeroed(size_t bytes) {
  void* const memory = std::calloc(1, bytes);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
inline void freeZeroed(void* memory) { std::free(memory); }

}  // namespace Lumvane
