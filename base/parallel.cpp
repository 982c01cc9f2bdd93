// Starting OpenCV's pool, using it, and the end of the process.
//
// TBB, which is OpenCV's pool on Linux, ends the process when it cannot create a thread, and creates each one only when
// there is work for it. So before the first loop the library finds out whether the process can have these threads, and
// then makes the pool create them:
//
// - canHaveThreads() creates as many of its own, beside some memory. Where that fails, no loop of the library ever uses
//   the pool: a limit that has been reached once may be reached again. On Windows nothing is tried: there the pool is
//   OpenCV's own, which gets by with the threads it has, and a new one waits as long as another DLL's DllMain runs.
// - Rendezvous is a loop that keeps each thread until all have come, for 20 ms at most. Later ones work from then on.
//
// All this is done on the calling thread, however long it takes. A thread made for it would free OpenCV's data of that
// thread as it ends, which ends the process if memory is short, and it could outlive the call and so the library.
//
// A pool that throws while it starts is not used again either, because its next loop could wait forever.
#include "base/parallel.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <latch>
#include <mutex>
#include <thread>
#include <vector>
#ifndef _WIN32
#include <pthread.h>
#endif

#include "base/default_float_mode.h"
#include "base/unload.h"

namespace Lumvane {
namespace {

constexpr std::chrono::milliseconds kRendezvousTimeout(20), kExitTimeout(1000);
constexpr size_t kMemoryOfPool = size_t{1} << 20;  // bytes; no start failed in trials with this much

std::atomic<int> activePoolUses = 0;

// While one exists, exit() waits before it shuts OpenCV down. One made after that finds processExiting set.
struct PoolInUse {
  PoolInUse() { ++activePoolUses; }
  ~PoolInUse() { --activePoolUses; }
};

// Constructed once the pool runs, so destroyed before anything that OpenCV created for it. A child process forked while
// loops run inherits their count but not their threads: hence kExitTimeout. On Windows the threads have ended by then.
struct PoolShutdown {
  ~PoolShutdown() {
    processExiting = true;
#ifndef _WIN32
    const auto end = std::chrono::steady_clock::now() + kExitTimeout;
    while (activePoolUses > 0 && std::chrono::steady_clock::now() < end) std::this_thread::yield();
#endif
  }
};

// Calls the body through a pointer, so that compilers cannot move its arithmetic out of the lifetime of the mode.
struct InDefaultFloatMode : cv::ParallelLoopBody {
  explicit InDefaultFloatMode(const cv::ParallelLoopBody& called) : body(called) {}
  void operator()(const cv::Range& range) const override {
    const DefaultFloatMode floatMode;
    body(range);
  }
  const cv::ParallelLoopBody& body;
};

// For one range per thread. Waits until all have been taken, or for 20 ms.
struct Rendezvous : cv::ParallelLoopBody {
  explicit Rendezvous(int count) : expected(count) {}
  void operator()(const cv::Range& range) const override {
    taken += range.size();
    while (taken < expected && std::chrono::steady_clock::now() < end) std::this_thread::yield();
  }
  const int expected;
  mutable std::atomic<int> taken = 0;
  const std::chrono::steady_clock::time_point end = std::chrono::steady_clock::now() + kRendezvousTimeout;
};

#ifdef _WIN32
bool canHaveThreads(int) { return true; }
#else
void* waitFor(void* latch) { return static_cast<std::latch*>(latch)->wait(), nullptr; }

bool canHaveThreads(int count) {
  std::latch tried(1);
  std::vector<pthread_t> threads(kMemoryOfPool / sizeof(pthread_t));  // far more than it holds: this is the memory
  int started = 0;
  while (started < count && pthread_create(&threads[started], nullptr, waitFor, &tried) == 0) ++started;
  tried.count_down();
  for (int i = 0; i < started; ++i) pthread_join(threads[i], nullptr);
  return started == count;
}
#endif

// The number of threads that have to exist. A host may set more than one per processor, but these may come later.
int threadsToStart() {
  static const int processors = std::max(static_cast<int>(std::thread::hardware_concurrency()), 2);  // reads a file
  return std::min(cv::getNumThreads(), processors);
}

std::mutex startMutex;
std::atomic<int> startedThreads = 0;
std::atomic<bool> refused = false;

void startPool() noexcept {
  const std::lock_guard lock(startMutex);
  try {
    const int count = threadsToStart();
    if (refused || count <= startedThreads) return;
    refused = !canHaveThreads(count - std::max<int>(startedThreads, 1));
    if (refused) return;
    cv::parallel_for_(cv::Range(0, count), Rendezvous(count), count);
    static const PoolShutdown end;
    startedThreads = count;
  } catch (...) {
    refused = true;
  }
}

}  // namespace

int poolThreads() noexcept {
  const PoolInUse pool;
  if (refused || processExiting) return 1;
  if (startedThreads == 0 || threadsToStart() > startedThreads) startPool();
  return refused ? 1 : std::max(cv::getNumThreads(), 1);
}

void runParallel(int count, const cv::ParallelLoopBody& body, int pieces) {
  const InDefaultFloatMode whole(body);
  if (count <= 0) return;
  {
    const PoolInUse pool;
    const int threads = count == 1 ? 1 : poolThreads();
    if (threads > 1) return cv::parallel_for_(cv::Range(0, count), whole, pieces == 0 ? threads : pieces);
  }
  whole(cv::Range(0, count));
}

}  // namespace Lumvane
