// Times two functions alternately in one process, so that a slowdown of the machine affects both.
#pragma once

#include <functional>
#include <vector>

namespace bench {

/// One of the two functions. `prepare`, if any, runs untimed before each block of calls, or before each call.
struct Side {
  std::function<void()> run;
  std::function<void()> prepare = {};
  bool prepareEachCall = false;
};

/// A side with this many OpenCV threads. An untimed call before each block wakes them and warms the caches.
Side frames(const std::function<void()>& run, int threads = 1);

/// Time per call: the median over the repeats, and half the interquartile range.
struct Timing {
  double milliseconds = 0.0;
  double spread = 0.0;
};

/// Summarises times per call.
Timing summary(std::vector<double> milliseconds);

struct PairTiming {
  Timing ours, other;
};

/// Warms up both sides, then times blocks of calls of each in turn. A block lasts about `blockMs` and has at least one
/// call.
PairTiming timePair(const Side& ours, const Side& other, int repeats, double blockMs);

double millisecondsOf(const std::function<void()>& call);

}  // namespace bench
