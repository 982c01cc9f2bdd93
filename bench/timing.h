// Two things timed in alternation in one process, so that a slowdown of the machine affects both.
#pragma once

#include <functional>
#include <vector>

namespace bench {

/// One of the two. `prepare`, if any, runs untimed before each block of calls, or before each call.
struct Side {
  std::function<void()> run;
  std::function<void()> prepare = {};
  bool prepareEachCall = false;
};

/// Work on frames with this number of OpenCV's threads. A call before each block wakes them and warms the caches.
Side frames(const std::function<void()>& run, int threads = 1);

/// Per call: the median over the repeats, and half the interquartile range.
struct Timing {
  double milliseconds = 0.0;
  double spread = 0.0;
};

/// From times of single calls.
Timing summary(std::vector<double> milliseconds);

struct PairTiming {
  Timing ours, other;
};

/// Warms both sides up, then alternates between blocks of calls of one and of the other. A block fills `blockMs`, with
/// at least one call.
PairTiming timePair(const Side& ours, const Side& other, int repeats, double blockMs);

double millisecondsOf(const std::function<void()>& call);

}  // namespace bench
