// Two things timed side by side in one process, so that what slows the machine down for a while slows down both.
#pragma once

#include <functional>
#include <vector>

namespace bench {

/// One of the two. `prepare`, where there is one, runs untimed before each block of calls, or before each call.
struct Side {
  std::function<void()> run;
  std::function<void()> prepare = {};
  bool prepareEachCall = false;
};

/// Work on frames with this number of OpenCV's threads. A call ahead of each block wakes them and fills the caches.
Side frames(const std::function<void()>& run, int threads = 1);

/// Of one call: the median over the repeats, and half the distance between their quartiles.
struct Timing {
  double milliseconds = 0.0;
  double spread = 0.0;
};

/// From times of single calls.
Timing summary(std::vector<double> milliseconds);

struct PairTiming {
  Timing ours, other;
};

/// Warms both sides up, then alternates between blocks of calls of the one and of the other. A block is as many calls
/// as fill `blockMs`, at least one.
PairTiming timePair(const Side& ours, const Side& other, int repeats, double blockMs);

double millisecondsOf(const std::function<void()>& call);

}  // namespace bench
