#include "bench/timing.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <opencv2/core/utility.hpp>

namespace bench {
namespace {

double blockOf(const Side& side, int calls) {
  if (side.prepare) side.prepare();
  return millisecondsOf([&] {
           for (int i = 0; i < calls; ++i) side.run();
         }) /
         calls;
}

int callsPerBlock(const Side& side, double blockMs) {
  blockOf(side, 1);  // allocates memory and fills tables
  if (side.prepareEachCall) return 1;
  const double calls = blockMs / std::max(blockOf(side, 1), 1e-3);
  return std::clamp(static_cast<int>(std::ceil(calls)), 1, 1000);
}

// Interpolates linearly between the neighbouring values.
double quantile(const std::vector<double>& sorted, double part) {
  const double place = part * static_cast<double>(sorted.size() - 1);
  const auto left = static_cast<size_t>(place);
  const size_t right = std::min(left + 1, sorted.size() - 1);
  return sorted[left] + (sorted[right] - sorted[left]) * (place - static_cast<double>(left));
}

}  // namespace

Side frames(const std::function<void()>& run, int threads) {
  return {run, [run, threads] {
            cv::setNumThreads(threads);
            run();
          }};
}

Timing summary(std::vector<double> milliseconds) {
  if (milliseconds.empty()) return {};
  std::sort(milliseconds.begin(), milliseconds.end());
  return {quantile(milliseconds, 0.5), 0.5 * (quantile(milliseconds, 0.75) - quantile(milliseconds, 0.25))};
}

PairTiming timePair(const Side& ours, const Side& other, int repeats, double blockMs) {
  const int ourCalls = callsPerBlock(ours, blockMs);
  const int otherCalls = callsPerBlock(other, blockMs);
  std::vector<double> ourTimes, otherTimes;
  for (int i = 0; i < repeats; ++i) {
    ourTimes.push_back(blockOf(ours, ourCalls));
    otherTimes.push_back(blockOf(other, otherCalls));
  }
  return {summary(ourTimes), summary(otherTimes)};
}

double millisecondsOf(const std::function<void()>& call) {
  const auto start = std::chrono::steady_clock::now();
  call();
  const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
  return time.count();
}

}  // namespace bench
