// Allocations that can be made to fail and are counted. Programs that link failing_allocator.cpp use its malloc
// family, or, under a sanitizer or without glibc, its operator new.
#pragma once

#include <cstddef>
#include <functional>

// Sanitizers have a malloc family of their own.
#if defined(__GLIBC__) && !defined(LUMVANE_SANITIZED)
#define LUMVANE_OWN_MALLOC 1
#endif

namespace test {

enum class Failing { kOnce, kFromThenOn };

/// Makes the `which`th allocation of the calling thread fail, counted from 1, and with kFromThenOn all after it.
void startFailing(long which, Failing failing);

/// Stops that and returns how many allocations have failed.
long stopFailing();

/// From now on no thread can be created, as in a container that has reached its limit. Only with LUMVANE_OWN_MALLOC.
void refuseThreads();

/// Blocks of memory that all threads have allocated and not freed.
long liveBlocks();

/// The most bytes that all threads have in use at any time during `run`, beyond those in use before it.
size_t mostMemoryOf(const std::function<void()>& run);

}  // namespace test
