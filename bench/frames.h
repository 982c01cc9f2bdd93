// Frames for timing effects.
#pragma once

#include <algorithm>
#include <cmath>
#include <random>

#include "bench/picture.h"

namespace bench {

/// An opaque BGRA frame of smooth areas with grain, like a photo.
inline Picture photoLikeFrame(const Size& size) {
  std::mt19937 random(1);
  std::normal_distribution<float> distribution(0.0f, 4.0f);
  std::vector<float> grain(1 << 16);  // each row starts at a different position, to avoid patterns
  for (float& value : grain) value = distribution(random);
  std::vector<float> across(size_t{3} * size.width);
  for (size_t i = 0; i < across.size(); ++i) across[i] = 120.0f + 70.0f * std::sin(0.004f * (i / 3) + i % 3);
  std::vector<uint8_t> frame(size_t{4} * size.width * size.height);
  uint8_t* pixel = frame.data();
  for (int y = 0; y < size.height; ++y) {
    float down[3];
    for (int c = 0; c < 3; ++c) down[c] = 50.0f * std::cos(0.007f * y - 2.0f * c);
    size_t place = random();
    for (int x = 0; x < size.width; ++x, pixel += 4) {
      for (int c = 0; c < 3; ++c) {
        const float value = across[size_t{3} * x + c] + down[c] + grain[place++ % grain.size()];
        pixel[c] = static_cast<uint8_t>(std::clamp(value, 0.0f, 255.0f));
      }
      pixel[3] = 255;
    }
  }
  return {"bgra", size.width, size.height, {frame}};
}

/// An opaque BGRA frame of independent, uniformly random colours.
inline Picture noiseFrame(const Size& size) {
  std::mt19937 random(2);
  std::vector<uint8_t> frame(size_t{4} * size.width * size.height);
  for (size_t i = 0; i < frame.size(); i += 4) {
    const auto bits = random();
    for (int c = 0; c < 3; ++c) frame[i + c] = static_cast<uint8_t>(bits >> 8 * c);
    frame[i + 3] = 255;
  }
  return {"bgra", size.width, size.height, {frame}};
}

/// The frame with alpha values from 0 to 255 side by side and its colours premultiplied.
inline Picture translucent(Picture bgra) {
  std::vector<uint8_t>& frame = bgra.planes[0];
  for (size_t i = 0; i < frame.size(); i += 4) {
    const auto alpha = static_cast<uint8_t>(i / 4);
    for (int c = 0; c < 3; ++c) frame[i + c] = static_cast<uint8_t>(frame[i + c] * alpha / 255);
    frame[i + 3] = alpha;
  }
  return bgra;
}

}  // namespace bench
