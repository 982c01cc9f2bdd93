#include "tests/failing_allocator.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>

// Sanitizers bring a malloc family of their own.
#if defined(__GLIBC__) && !defined(LUMVANE_SANITIZED)
#define LUMVANE_OWN_MALLOC 1
#endif

namespace {

thread_local long countdown = 0;  // 0: nothing fails
thread_local bool fromThenOn = false;
thread_local long failures = 0;
std::atomic<long> live = 0;

// Whether the allocation at hand is to fail.
bool fails() {
  if (countdown == 0) return false;
  if (countdown > 1) {
    --countdown;
    return false;
  }
  if (!fromThenOn) countdown = 0;
  ++failures;
  errno = ENOMEM;
  return true;
}

void* counted(void* block) {
  if (block != nullptr) live.fetch_add(1, std::memory_order_relaxed);
  return block;
}

}  // namespace

namespace test {

void startFailing(long which, Failing failing) {
  failures = 0;
  fromThenOn = failing == Failing::kFromThenOn;
  countdown = which;
}

long stopFailing() {
  countdown = 0;
  return failures;
}

long liveBlocks() { return live.load(std::memory_order_relaxed); }

}  // namespace test

#ifdef LUMVANE_OWN_MALLOC

extern "C" {

void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void* __libc_memalign(size_t, size_t);
void __libc_free(void*);

void* malloc(size_t bytes) { return fails() ? nullptr : counted(__libc_malloc(bytes)); }
void* calloc(size_t count, size_t bytes) { return fails() ? nullptr : counted(__libc_calloc(count, bytes)); }
void* memalign(size_t alignment, size_t bytes) {
  return fails() ? nullptr : counted(__libc_memalign(alignment, bytes));
}
void* aligned_alloc(size_t alignment, size_t bytes) { return memalign(alignment, bytes); }
int posix_memalign(void** block, size_t alignment, size_t bytes) {
  void* const found = memalign(alignment, bytes);
  if (found == nullptr) return ENOMEM;
  *block = found;
  return 0;
}
void* realloc(void* block, size_t bytes) {
  if (fails()) return nullptr;
  void* const found = __libc_realloc(block, bytes);
  if (block == nullptr) counted(found);
  return found;
}
void free(void* block) {
  if (block != nullptr) live.fetch_sub(1, std::memory_order_relaxed);
  __libc_free(block);
}

}  // extern "C"

#else

// The forms of operator new that are not replaced call these.
void* operator new(size_t bytes) {
  void* const block = fails() ? nullptr : std::malloc(bytes == 0 ? 1 : bytes);
  if (block == nullptr) throw std::bad_alloc();
  return counted(block);
}
void operator delete(void* block) noexcept {
  if (block != nullptr) live.fetch_sub(1, std::memory_order_relaxed);
  std::free(block);
}
void operator delete(void* block, size_t) noexcept { operator delete(block); }

#endif
