// All use of OpenCV's threads goes through these functions.
#pragma once

#include <concepts>
#include <opencv2/core/utility.hpp>

namespace Lumvane {

/// Returns the number of threads that run loops, 1 or more: cv::getNumThreads(), which must not be called earlier. The
/// host may change it between two calls. The first call starts OpenCV's pool; if the process cannot have its threads,
/// all loops of the library run on the threads that call them, and the result is 1.
int poolThreads() noexcept;

/// Calls `body` for ranges that together cover 0 to count - 1, on OpenCV's threads, and returns when all are done.
/// `pieces` is a hint for the number of ranges; 0 means one per thread. The body runs in the default floating-point
/// mode, whatever the mode in which a pool thread was created.
void runParallel(int count, const cv::ParallelLoopBody& body, int pieces = 0);

/// The same for any callable that takes a cv::Range.
template <class Body>
requires(!std::derived_from<Body, cv::ParallelLoopBody>) void runParallel(int count, const Body& body, int pieces = 0) {
  struct Loop : cv::ParallelLoopBody {
    explicit Loop(const Body& called) : body(called) {}
    void operator()(const cv::Range& range) const override { body(range); }
    const Body& body;
  };
  runParallel(count, static_cast<const cv::ParallelLoopBody&>(Loop(body)), pieces);
}

}  // namespace Lumvane
