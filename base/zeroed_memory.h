#pragma once

#include <cstdlib>
#include <new>

namespace Lumvane {

/// Memory for an object that is zero, paddings included, before any of its fields is set. Objects that are to lie in such
/// memory have these two as their operators new and delete.
inline void* allocateZeroed(size_t bytes) {
  void* const memory = std::calloc(1, bytes);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
inline void freeZeroed(void* memory) { std::free(memory); }

}  // namespace Lumvane
