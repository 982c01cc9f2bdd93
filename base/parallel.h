// The one door to OpenCV's threads.
#pragma once

#include <opencv2/core/utility.hpp>

namespace Lumvane {

/// Gives the numbers from 0 up to, not including, `count` to `body` in ranges, on OpenCV's threads, and waits for the end.
/// `pieces` is a hint how many ranges to make. The body runs in the default floating-point mode, whatever mode a thread
/// of the pool was made in.
void runParallel(int count, const cv::ParallelLoopBody& body, double pieces = cv::getNumThreads());

/// The same for anything that can be called with a cv::Range.
template <class Body>
void runParallel(int count, const Body& body, double pieces = cv::getNumThreads()) {
  struct Loop : cv::ParallelLoopBody {
    explicit Loop(const Body& called) : body(called) {}
    void operator()(const cv::Range& range) const override { body(range); }
    const Body& body;
  };
  runParallel(count, static_cast<const cv::ParallelLoopBody&>(Loop(body)), pieces);
}

}  // namespace Lumvane
