// The library is loaded and unloaded again and again, with work between. OpenCV, whose pool of threads outlives that,
// and Highway are dependencies of the test, and so stay.

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

#ifdef LUMVANE_SANITIZED  // memory is not measured then: a sanitizer keeps what is freed for a while
constexpr int kRounds = 30;
#else
constexpr int kRounds = 100;
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

// The C library otherwise keeps large blocks that were freed, where the tables that stay lie behind them.
void returnLargeBlocksAtOnce() {
#ifdef __GLIBC__
  mallopt(M_MMAP_THRESHOLD, 1 << 20);
#endif
}

TEST(Reload, LeavesNothingButTheHdrTables) {
  returnLargeBlocksAtOnce();
  const test::LutFolder folder;
  hwy::SupportedTargets();
  std::vector<uint8_t> first;
  long before = 0, threads = 0;
  constexpr int kWarmUp = 10, kHdrEvery = 10;
  for (int round = 0; round < kRounds; ++round) {
    if (round == kWarmUp) {
      before = test::residentKiB();
      threads = threadCount();
    }
    void* const library = dlopen(kLibrary, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    test::Library functions = functionsOf(library);
    if (round % kHdrEvery != 0) functions.CreateVideoAdjustColor = nullptr;
    const std::vector<uint8_t> found = test::renderAll(functions, folder.path, 140, 100);
    if (round == 0) first = found;
    EXPECT_TRUE(std::equal(found.begin(), found.end(), first.begin())) << "round " << round;
    ASSERT_EQ(dlclose(library), 0);
    EXPECT_EQ(dlopen(kLibrary, RTLD_NOW | RTLD_NOLOAD), nullptr) << "the library has not been unloaded";
  }
  EXPECT_LE(threadCount(), threads);
  // Two tables of 65 points for each load, 3.3 MB each with what its rows take.
  constexpr long kTablesKiB = (kRounds - kWarmUp) / kHdrEvery * (2 * 65 * 65 * (65 * 3 * 4 + 8 + 16) / 1024);
  const long grown = test::residentKiB() - before;
  std::cout << grown << " KiB more, of which the tables take " << kTablesKiB << "\n";
#ifndef LUMVANE_SANITIZED
  EXPECT_LE(grown, kTablesKiB + 2048);
#endif
}

}  // namespace
