#pragma once

#include <cstdlib>
#include <new>

namespace Lumvane {

/// Zeroed memory for an object, padding included, before its fields are set. Classes use these two as their operators
/// new and delete.
inline void* allocateZeroed(size_t bytes) {
  void* const memory = std::calloc(1, bytes);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
inline void freeZeroed(void* memory) { std::free(memory); }

}  // namespace Lumvane
