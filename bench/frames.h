// Frames to time effects on, and what all timings of frames report.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace bench {

inline constexpr int kWidth = 1920;
inline constexpr int kHeight = 1080;

/// An opaque BGRA frame of smooth areas with grain, as a camera gives them.
inline std::vector<uint8_t> photoLikeFrame(int width = kWidth, int height = kHeight) {
  std::mt19937 random(1);
  std::normal_distribution<float> grain(0.0f, 4.0f);
  std::vector<uint8_t> frame(size_t{4} * width * height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      uint8_t* pixel = &frame[size_t{4} * (static_cast<size_t>(y) * width + x)];
      for (int c = 0; c < 3; ++c) {
        const float wave = 120.0f + 70.0f * std::sin(0.004f * x + c) + 50.0f * std::cos(0.007f * y - 2.0f * c);
        pixel[c] = static_cast<uint8_t>(std::clamp(wave + grain(random), 0.0f, 255.0f));
      }
      pixel[3] = 255;
    }
  }
  return frame;
}

/// Adds the megapixels per second of a benchmark whose every iteration is one frame.
inline void countPixels(benchmark::State& state, int width = kWidth, int height = kHeight) {
  const double pixels = static_cast<double>(width) * height * static_cast<double>(state.iterations());
  state.counters["Mpx/s"] = benchmark::Counter(1e-6 * pixels, benchmark::Counter::kIsRate);
}

}  // namespace bench
