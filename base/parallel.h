// The one door to OpenCV's threads.
#pragma once

#include <opencv2/core/utility.hpp>

namespace Lumvane {

/// How many threads loops are spread over: cv::getNumThreads(), which is not to be asked before. The first call starts
/// OpenCV's pool. A pool that meets a want of memory or of threads while it starts may wait for ever in its next loop, or
/// end the process, so this is tried beside the calling thread; if it fails, all loops of the process run on the threads
/// that call them, and the answer is 1.
int poolThreads() noexcept;

/// Gives the numbers from 0 up to, not including, `count` to `body` in ranges, on OpenCV's threads, and waits for the end.
/// `pieces` is a hint how many ranges to make. The body runs in the default floating-point mode, whatever mode a thread
/// of the pool was made in.
void runParallel(int count, const cv::ParallelLoopBody& body, double pieces = poolThreads());

/// The same for anything that can be called with a cv::Range.
template <class Body>
void runParallel(int count, const Body& body, double pieces = poolThreads()) {
  struct Loop : cv::ParallelLoopBody {
    explicit Loop(const Body& called) : body(called) {}
    void operator()(const cv::Range& range) const override { body(range); }
    const Body& body;
  };
  runParallel(count, static_cast<const cv::ParallelLoopBody&>(Loop(body)), pieces);
}

}  // namespace Lumvane
