// Pictures in the layouts of effects and peers, and the difference between two of them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

/// Frame sizes under their usual names.
struct Size {
  std::string name;
  int width, height;
  double megapixels() const { return 1e-6 * width * height; }
};
inline const Size k720p = {"720p", 1280, 720};
inline const Size k1080p = {"1080p", 1920, 1080};
inline const Size k4K = {"4K", 3840, 2160};
inline const Size k8K = {"8K", 7680, 4320};

/// Planes with packed rows. `format` is FFmpeg's name of the layout: "bgra", "gbrpf32le" or "yuv420p".
struct Picture {
  std::string format;
  int width, height;
  std::vector<std::vector<uint8_t>> planes;
};

/// Converts BGRA to float planes in the order green, blue, red, from 0 to 1; and back, rounded, with alpha 255.
Picture toFloatPlanes(const Picture& bgra);
Picture fromFloatPlanes(const Picture& floats);

/// Converts BGRA to limited-range Y, Cb and Cr by the BT.2020 matrix, with chroma averaged over four pixels.
Picture toYuv420(const Picture& bgra);

/// The mean and largest difference between the bytes of two pictures of the same shape, over all planes.
struct Difference {
  double mean = 0.0;
  int most = 0;
};
Difference differenceOf(const Picture& a, const Picture& b);

}  // namespace bench
