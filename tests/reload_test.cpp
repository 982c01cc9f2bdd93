// Loads and unloads the library many times, with work in between. OpenCV, whose thread pool keeps running, and Highway
// stay loaded, because the test itself depends on them.

#include <dlfcn.h>
#include <gtest/gtest.h>
#ifdef __linux__
#include <malloc.h>
#endif
#include <hwy/targets.h>

#include <opencv2/core/utility.hpp>

#define LUMVANE_TEST_NOT_LINKED
#include "tests/effects.h"
#include "tests/resident_memory.h"

namespace {

constexpr const char* kLibrary = LUMVANE_TEST_LIBRARY;

#if !defined(__OPTIMIZE__)  // here HDR takes seconds to load
constexpr int kRounds = 20;
#elif defined(LUMVANE_SANITIZED)  // memory is not measured: sanitizers keep freed blocks for a while
constexpr int kRounds = 30;
#else
constexpr int kRounds = 40;
#endif

test::Library functionsOf(void* library) {
  test::Library functions;
#define LUMVANE_EXPORT(name) functions.name = reinterpret_cast<decltype(functions.name)>(dlsym(library, #name));
#include "cmake/exports.inc"
#undef LUMVANE_EXPORT
  return functions;
}

long threadCount() {
  const std::filesystem::directory_iterator tasks("/proc/self/task");
  return std::distance(begin(tasks), end(tasks));
}

// Otherwise the C library keeps freed large blocks that lie below blocks in use.
void returnLargeBlocksAtOnce() {
#ifdef __GLIBC__
  mallopt(M_MMAP_THRESHOLD, 1 << 20);
#endif
}

TEST(Reload, LeavesNothing) {
  returnLargeBlocksAtOnce();
  const test::LutFolder folder;
  hwy::SupportedTargets();
  std::vector<uint8_t> first;
  long before = 0, threads = 0;
  constexpr int kWarmUp = 10;
  for (int round = 0; round < kRounds; ++round) {
    if (round == kWarmUp) {
      before = test::residentKiB();
      threads = threadCount();
    }
    void* const library = dlopen(kLibrary, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    const std::vector<uint8_t> found = test::renderAll(functionsOf(library), folder.path, 140, 100);
    if (round == 0) first = found;
    EXPECT_EQ(found, first) << "round " << round;
    ASSERT_EQ(dlclose(library), 0);
    EXPECT_EQ(dlopen(kLibrary, RTLD_NOW | RTLD_NOLOAD), nullptr) << "the library has not been unloaded";
  }
  EXPECT_LE(threadCount(), threads);
  const long grown = test::residentKiB() - before;
  std::cout << grown << " KiB of growth\n";
#ifndef LUMVANE_SANITIZED
  EXPECT_LE(grown, 2048);
#endif
}

}  // namespace
