// Threads that use separate objects; the thread sanitizer runs these tests too.

#include <gtest/gtest.h>

#include <barrier>
#include <latch>
#include <opencv2/core/utility.hpp>
#include <thread>

#include "base/parallel.h"
#include "hdr/hdr_shared.h"
#include "lut/blend_table.h"
#include "tests/effects.h"

namespace {

// Runs the work on `count` threads that start nearly at once.
template <class Work>
void atOnce(int count, const Work& work) {
  std::barrier start(count);
  std::vector<std::thread> threads;
  for (int i = 0; i < count; ++i) {
    threads.emplace_back([&, i] {
      start.arrive_and_wait();
      work(i);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

// The other tests would pass with an OpenCV built without threads.
TEST(Threads, AreAvailable) {
  if (cv::getNumberOfCPUs() < 2) GTEST_SKIP() << "one processor";  // by this process's affinity
  EXPECT_GT(cv::getNumThreads(), 1);
}

// Loads and first frames of every effect, HDR included; frames on odd threads are large enough for the pool.
TEST(Threads, RenderSideBySide) {
  constexpr int kThreads = 8;
  const test::LutFolder folder;
  test::Bytes results[kThreads];
  const auto render = [&](int i) {
    return test::renderAll(test::kLinked, folder.path, i % 2 == 0 ? 40 : 140, i % 2 == 0 ? 30 : 100);
  };
  const auto loadHdr = [&](int) {
    DestroyVideoAdjustColor(CreateVideoAdjustColor(folder.path.c_str(), 0, 0, 0, 8, 8));
  };
  for (int round = 0; round < 4; ++round) {
    Lumvane::dropHdrData();
    // The first thread loads and the others wait for it; in odd rounds this happens amid other work.
    if (round % 2 == 0) atOnce(kThreads, loadHdr);
    atOnce(kThreads, [&](int i) { results[i] = render(i); });
    Lumvane::dropHdrData();
    for (int i = 0; i < kThreads; ++i) EXPECT_TRUE(results[i] == render(i)) << "thread " << i;
  }
}

#ifndef _WIN32
bool expectData = false;
// Runs at the very end of exit(), when the data that frames read must still exist.
[[gnu::destructor(101)]] void checkData() {
  if (expectData && !(Lumvane::hdrDataLoaded() && Lumvane::acquireTable())) _exit(1);
}

// Calls exit() while another thread renders and 200 ms before a loop ends.
[[noreturn]] void exitDuringLoops() {
  Lumvane::allocateHdrData();
  Lumvane::acquireTable();
  expectData = true;
  std::thread([] {
    test::Bytes pixels(4 * 140 * 100);
    for (;;) test::clarity(30, 90)(pixels.data(), 0, pixels.data(), 0, 140, 100);
  }).detach();
  std::latch running(1);
  std::thread([&running] {
    Lumvane::runParallel(2, [&running](const cv::Range& range) {
      if (range.start > 0) return;
      running.count_down();
      std::this_thread::sleep_for(std::chrono::milliseconds(200));
      std::fputs("the loop is done", stderr);
    });
  }).detach();
  running.wait();
  std::exit(0);
}

TEST(Exit, WaitsForLoopsAndKeepsTheData) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");  // in a new process
  EXPECT_EXIT(exitDuringLoops(), testing::ExitedWithCode(0), "the loop is done");
}
#endif

}  // namespace
