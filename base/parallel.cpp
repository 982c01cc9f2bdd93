#include "base/parallel.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <latch>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "base/default_float_mode.h"
#include "base/unload.h"

namespace Lumvane {
namespace {

constexpr std::chrono::milliseconds kRendezvousTimeout(20), kStartTimeout(2000), kExitTimeout(1000);

std::atomic<int> activePoolUses = 0;

// While one exists, exit() waits before it shuts OpenCV down. False once exit() has begun: there is no pool then.
class PoolInUse {
 public:
  PoolInUse() { ++activePoolUses; }
  ~PoolInUse() { --activePoolUses; }
  PoolInUse(const PoolInUse&) = delete;
  PoolInUse& operator=(const PoolInUse&) = delete;
  explicit operator bool() const { return !processExiting; }
};

// Constructed once the pool runs, so destroyed before anything that OpenCV created for it. A child process forked while
// loops run inherits their count but not their threads: hence the limit. On Windows the threads have ended by then.
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
class InDefaultFloatMode : public cv::ParallelLoopBody {
 public:
  explicit InDefaultFloatMode(const cv::ParallelLoopBody& body) : body_(body) {}
  void operator()(const cv::Range& range) const override {
    const DefaultFloatMode floatMode;
    body_(range);
  }

 private:
  const cv::ParallelLoopBody& body_;
};

// A thread that takes an iteration waits until all are taken, or for 20 ms, so that the pool creates all its threads.
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

// Throws if the process cannot start `count` more threads, or cannot allocate 1 MiB.
void tryThreads(int count) {
  std::make_unique_for_overwrite<char[]>(size_t{1} << 20);
  std::latch made(1);
  std::vector<std::jthread> threads;
  try {
    while (count-- > 0) threads.emplace_back([&made] { made.wait(); });
  } catch (...) {
    made.count_down();
    throw;
  }
  made.count_down();
}

// The number of pool threads that must start. A host may set more than one per processor, but these need not start.
int threadsToStart() {
  static const int processors = std::max(static_cast<int>(std::thread::hardware_concurrency()), 2);  // reads a file
  return std::min(cv::getNumThreads(), processors);
}

// Makes the pool create its threads; returns their number. Throws if that fails or takes longer than kStartTimeout.
int startPool() {
  std::promise<int> promise;
  std::future<int> threads = promise.get_future();
  std::thread helper([promise = std::move(promise)]() mutable {
    try {
      tryThreads(1);  // before the first call to OpenCV, which creates the pool
      const int count = threadsToStart();
      tryThreads(count - 1);
      cv::parallel_for_(cv::Range(0, count), Rendezvous(count), count);
      promise.set_value(count);
    } catch (...) {
      promise.set_exception(std::current_exception());
    }
  });
  if (threads.wait_for(kStartTimeout) == std::future_status::ready) {
    helper.join();
  } else {
    helper.detach();
    throw std::bad_alloc();
  }
  return threads.get();
}

}  // namespace

int poolThreads() noexcept {
  static std::mutex mutex;
  static std::atomic<int> started = 0;
  static std::atomic<bool> failed = false;
  const PoolInUse pool;
  if (failed || !pool) return 1;
  if (started > 0 && threadsToStart() <= started) return cv::getNumThreads();
  try {
    const std::lock_guard lock(mutex);
    if (failed) return 1;
    if (started == 0 || threadsToStart() > started) started = startPool();
    static const PoolShutdown end;
    return cv::getNumThreads();
  } catch (...) {
    failed = true;
    return 1;
  }
}

void runParallel(int count, const cv::ParallelLoopBody& body, double pieces) {
  const InDefaultFloatMode whole(body);
  if (count <= 0) return;
  const PoolInUse pool;
  if (count == 1 || !pool || poolThreads() == 1) return whole(cv::Range(0, count));
  cv::parallel_for_(cv::Range(0, count), whole, pieces);
}

}  // namespace Lumvane
