// A pool of threads for cv::parallel_for_ in programs under the thread sanitizer. It does not see how OpenCV's own pool,
// compiled without it, hands work over, and takes every hand-over for a race. Nothing is silenced here: the threads of
// this pool are made and joined where it sees them, so that it judges what our loop bodies do to one another.

#include <algorithm>
#include <memory>
#include <opencv2/core/parallel/parallel_backend.hpp>
#include <thread>
#include <vector>

namespace {

thread_local int threadNumber = 0;

class VisiblePool : public cv::parallel::ParallelForAPI {
 public:
  void parallel_for(int tasks, FN_parallel_for_body_cb_t body, void* data) override {
    const int count = std::clamp(threads_, 1, std::max(tasks, 1));
    const auto work = [=](int number) {
      threadNumber = number;
      for (int task = number; task < tasks; task += count) body(task, task + 1, data);
    };
    std::vector<std::thread> others;
    for (int number = 1; number < count; ++number) others.emplace_back(work, number);
    work(0);
    for (std::thread& thread : others) thread.join();
  }
  int getThreadNum() const override { return threadNumber; }
  int getNumThreads() const override { return threads_; }
  int setNumThreads(int threads) override {
    if (threads >= 0) threads_ = threads;
    return threads_;
  }
  const char* getName() const override { return "visible"; }

 private:
  int threads_ = 4;
};

const bool installed = [] {
  cv::parallel::setParallelForBackend(std::make_shared<VisiblePool>(), false);
  return true;
}();

}  // namespace
