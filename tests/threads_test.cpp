// What threads share while each works on objects of its own: also what the thread sanitizer gets to see.

#include <gtest/gtest.h>

#include <barrier>
#include <opencv2/core/utility.hpp>
#include <thread>

#include "hdr/hdr_shared.h"
#include "lut/blend_table.h"
#include "tests/effects.h"

namespace {

// Runs the work on so many threads, which start it as nearly at once as they can.
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

// The first to need it builds it; seen where this test has a process of its own.
TEST(Threads, ShareOneBlendTable) {
  constexpr int kThreads = 16;
  std::shared_ptr<const Lumvane::Table> tables[kThreads];
  atOnce(kThreads, [&](int i) {
    tables[i] = Lumvane::acquireTable();
    EXPECT_EQ(tables[i]->mix[200][100][255], 200);
    EXPECT_EQ(tables[i]->multiply[255][77], 77);
  });
  for (const auto& table : tables) EXPECT_EQ(table, tables[0]);
}

// An OpenCV that was built without threads would pass all other tests.
TEST(Threads, AreThere) {
  if (std::thread::hardware_concurrency() < 2) GTEST_SKIP() << "one processor";
  EXPECT_GT(cv::getNumThreads(), 1);
}

// Loads, first frames and all; on odd threads frames that are spread over a pool.
TEST(Threads, RenderSideBySide) {
  constexpr int kThreads = 8;
  const test::LutFolder folder;
  test::Bytes results[kThreads];
  const auto render = [&](int i) {
    return test::renderAll(test::kLinked, folder.path, i % 2 == 0 ? 40 : 140, i % 2 == 0 ? 30 : 100);
  };
  for (int round = 0; round < 3; ++round) {
    atOnce(kThreads, [&](int i) { results[i] = render(i); });
    for (int i = 0; i < kThreads; ++i) EXPECT_TRUE(results[i] == render(i)) << "thread " << i;
  }
}

// The first of them loads the files, and the others wait for it; all use what it loaded.
TEST(Threads, LoadHdrOnce) {
  constexpr int kThreads = 8, kWidth = 120, kHeight = 90;
  const test::LutFolder folder;
  test::Bytes results[kThreads];
  const auto convert = [&](int i) {
    test::Yv12Frame frame(kWidth, kHeight);
    frame.fill(test::noise(kWidth * kHeight * 3 / 2, 1));
    void* const object = CreateVideoAdjustColor(folder.path.c_str(), 0, 1, i % 2, kWidth, kHeight);
    frame.processTo(frame, object);
    DestroyVideoAdjustColor(object);
    return frame.packed();
  };
  for (int round = 0; round < 3; ++round) {
    Lumvane::dropHdrData();
    atOnce(kThreads, [&](int i) { results[i] = convert(i); });
    Lumvane::dropHdrData();
    for (int i = 0; i < kThreads; ++i) EXPECT_TRUE(results[i] == convert(i)) << "thread " << i;
  }
}

}  // namespace
