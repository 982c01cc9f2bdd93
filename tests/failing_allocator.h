// Allocations that fail on request, and are counted. In programs that link failing_allocator.cpp, operator new and, without a sanitizer,
// the malloc family come from there.
#pragma once

#include <cstddef>
#include <functional>

// Sanitizers bring a malloc family of their own.
#if defined(__GLIBC__) && !defined(LUMVANE_SANITIZED)
#define LUMVANE_OWN_MALLOC 1
#endif

namespace test {

enum class Failing { kOnce, kFromThenOn };

/// The `which`th allocation of the calling thread from now on fails, counted from 1, and perhaps all behind it.
void startFailing(long which, Failing failing);

/// Ends that and returns how many allocations have failed.
long stopFailing();

/// From now on no thread can be made, as where a container has reached its limit. With our own malloc alone.
void refuseThreads();

/// Blocks of memory that all threads have and have not given back.
long liveBlocks();

/// The most bytes that all threads have in use at a time while `run` runs, beyond those that they had before.
size_t mostMemoryOf(const std::function<void()>& run);

}  // namespace test
