// A thread pool for cv::parallel_for_ under the thread sanitizer. OpenCV's own pool is not compiled with the sanitizer,
// which therefore reports every hand-over of work as a race. Here the sanitizer sees threads created and joined, so it
// can check our loop bodies against one another without suppressions.

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
