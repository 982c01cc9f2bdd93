// What all timings of frames by Google Benchmark share.
#pragma once

#include <benchmark/benchmark.h>

#include <tuple>

#include "bench/frames.h"

namespace bench {

enum class FrameKind { photo, photoTranslucent, noise, noiseTranslucent };

/// The frame, made when another one was asked for last: a benchmark is called several times.
inline const std::vector<uint8_t>& frameOf(FrameKind kind, int width, int height) {
  static std::tuple<FrameKind, int, int> made = {};
  static std::vector<uint8_t> frame;
  if (!frame.empty() && made == std::tuple(kind, width, height)) return frame;
  const bool photo = kind == FrameKind::photo || kind == FrameKind::photoTranslucent;
  frame = photo ? photoLikeFrame(width, height) : noiseFrame(width, height);
  if (kind == FrameKind::photoTranslucent || kind == FrameKind::noiseTranslucent) frame = translucent(std::move(frame));
  made = {kind, width, height};
  return frame;
}

struct Size {
  int width, height;
};

/// Of 16 to 9.
inline Size sizeOfHeight(int64_t height) { return {static_cast<int>(height * 16 / 9), static_cast<int>(height)}; }

/// 720p to 8K, on one thread and on two.
inline void everySizeAndThreads(benchmark::internal::Benchmark* effect) {
  effect->ArgNames({"height", "threads"})
      ->ArgsProduct({{720, 1080, 2160, 4320}, {1, 2}})
      ->UseRealTime()
      ->Unit(benchmark::kMillisecond);
}

/// Adds the megapixels per second of a benchmark whose every iteration is one frame.
inline void countPixels(benchmark::State& state, int width = kWidth, int height = kHeight) {
  const double pixels = static_cast<double>(width) * height * static_cast<double>(state.iterations());
  state.counters["Mpx/s"] = benchmark::Counter(1e-6 * pixels, benchmark::Counter::kIsRate);
}

}  // namespace bench
