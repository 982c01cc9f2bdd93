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

constexpr std::chrono::milliseconds kMostForMeeting(20), kMostForStart(2000), kMostForEnd(1000);

std::atomic<int> callsOfThePool = 0;

// For the life of this object exit() waits before it goes on to end OpenCV, unless it has begun: then there is no pool.
class PoolInUse {
 public:
  PoolInUse() { ++callsOfThePool; }
  ~PoolInUse() { --callsOfThePool; }
  PoolInUse(const PoolInUse&) = delete;
  PoolInUse& operator=(const PoolInUse&) = delete;
  explicit operator bool() const { return !processEnds; }
};

// Made once the pool runs, and so destroyed before anything that OpenCV made for it. A process that fork() made of one
// with loops at work has their count but not their threads: hence the limit. On Windows threads have ended by then.
struct PoolEnd {
  ~PoolEnd() {
    processEnds = true;
#ifndef _WIN32
    const auto end = std::chrono::steady_clock::now() + kMostForEnd;
    while (callsOfThePool > 0 && std::chrono::steady_clock::now() < end) std::this_thread::yield();
#endif
  }
};

// The body is called through a pointer, so that no compiler takes its arithmetic out of the life of the mode.
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

// Each thread of the pool that takes a number holds it until all are taken, or for a moment: so all of them get made.
struct Meeting : cv::ParallelLoopBody {
  explicit Meeting(int count) : expected(count) {}
  void operator()(const cv::Range& range) const override {
    taken += range.size();
    while (taken < expected && std::chrono::steady_clock::now() < end) std::this_thread::yield();
  }
  const int expected;
  mutable std::atomic<int> taken = 0;
  const std::chrono::steady_clock::time_point end = std::chrono::steady_clock::now() + kMostForMeeting;
};

// Throws where the process may not have so many threads more, or hardly any memory.
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

// More threads than processors the pool may be asked for, but need not have.
int threadsToStart() {
  static const int processors = std::max(static_cast<int>(std::thread::hardware_concurrency()), 2);  // reads a file
  return std::min(cv::getNumThreads(), processors);
}

// Has the pool make its threads. Throws where it cannot, or does not come back from that.
int startPool() {
  std::promise<int> promise;
  std::future<int> threads = promise.get_future();
  std::thread helper([promise = std::move(promise)]() mutable {
    try {
      tryThreads(1);  // before the first question to OpenCV, which makes the pool
      const int count = threadsToStart();
      tryThreads(count - 1);
      cv::parallel_for_(cv::Range(0, count), Meeting(count), count);
      promise.set_value(count);
    } catch (...) {
      promise.set_exception(std::current_exception());
    }
  });
  if (threads.wait_for(kMostForStart) == std::future_status::ready) {
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
    static const PoolEnd end;
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
