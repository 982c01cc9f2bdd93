// What all timings of frames by Google Benchmark report.
#pragma once

#include <benchmark/benchmark.h>

#include "bench/frames.h"

namespace bench {

/// Adds the megapixels per second of a benchmark whose every iteration is one frame.
inline void countPixels(benchmark::State& state, int width = kWidth, int height = kHeight) {
  const double pixels = static_cast<double>(width) * height * static_cast<double>(state.iterations());
  state.counters["Mpx/s"] = benchmark::Counter(1e-6 * pixels, benchmark::Counter::kIsRate);
}

}  // namespace bench
