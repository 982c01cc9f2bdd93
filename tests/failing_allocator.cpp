#include "tests/failing_allocator.h"

#include <malloc.h>
#ifdef LUMVANE_OWN_MALLOC
#include <dlfcn.h>
#include <pthread.h>
#endif

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>

#ifdef _WIN32
#define malloc_usable_size _msize
#endif

namespace {

thread_local long countdown = 0;  // 0: nothing fails
thread_local bool fromThenOn = false;
thread_local long failures = 0;
std::atomic<bool> threadsRefused = false;
std::atomic<long> live = 0;
std::atomic<size_t> inUse = 0, peakInUse = 0;  // bytes

// Returns whether the current allocation has to fail.
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
  if (block == nullptr) return block;
  ++live;
  const size_t now = inUse += malloc_usable_size(block);
  for (size_t most = peakInUse; now > most && !peakInUse.compare_exchange_weak(most, now);) continue;
  return block;
}

void* uncounted(void* block) {
  if (block == nullptr) return block;
  --live;
  inUse -= malloc_usable_size(block);
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

void refuseThreads() { threadsRefused = true; }

long liveBlocks() { return live; }

size_t peakMemoryOf(const std::function<void()>& run) {
  const size_t before = peakInUse = inUse.load();
  run();
  return peakInUse - before;
}

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
  return fails() ? nullptr : counted(__libc_realloc(uncounted(block), bytes));
}
void free(void* block) { __libc_free(uncounted(block)); }

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*), void* argument) {
  static const auto real = reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
  return threadsRefused ? EAGAIN : real(thread, attributes, run, argument);
}

}  // extern "C"

#else

// The default forms of all other operators call these.
void* operator new(size_t bytes) {
  void* const block = fails() ? nullptr : std::malloc(bytes == 0 ? 1 : bytes);
  if (block == nullptr) throw std::bad_alloc();
  return counted(block);
}
void operator delete(void* block) noexcept { std::free(uncounted(block)); }
void operator delete(void* block, size_t) noexcept { operator delete(block); }

#endif
