// An allocator that counts allocations and can make them fail. Programs that link failing_allocator.cpp use its malloc
// family, or its operator new under a sanitizer or without glibc.
#pragma once

#include <cstddef>
#include <functional>

// Sanitizers replace the malloc family themselves.
#if defined(__GLIBC__) && !defined(LUMVANE_SANITIZED)
#define LUMVANE_OWN_MALLOC 1
#endif

namespace test {

enum class Failing { kOnce, kFromThenOn };

/// Makes allocation number `which` of the calling thread fail, counted from 1, and with kFromThenOn all later ones.
void startFailing(long which, Failing failing);

/// Ends the failures and returns how many allocations have failed.
long stopFailing();

/// Makes thread creation fail from now on, as in a container at its limit. Only with LUMVANE_OWN_MALLOC.
void refuseThreads();

/// The number of blocks that all threads have allocated and not freed.
long liveBlocks();

/// Runs `run` and returns the peak of bytes in use by all threads, above those in use before.
size_t peakMemoryOf(const std::function<void()>& run);

}  // namespace test
