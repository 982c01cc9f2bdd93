// Pictures in the layouts that effects and peers take, and how far two of them are apart.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

/// A size of frames, and those in use, under their usual names.
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

/// From BGRA pixels: floats from 0 to 1 in planes green, blue, red, and back, rounded; alpha comes back as 255.
Picture toFloatPlanes(const Picture& bgra);
Picture fromFloatPlanes(const Picture& floats);

/// From BGRA pixels: Y, Cb and Cr of limited range by the matrix of BT.2020, chroma the mean of four pixels.
Picture toYuv420(const Picture& bgra);

/// How far the bytes of two pictures of one shape are apart, over all planes.
struct Difference {
  double mean = 0.0;
  int most = 0;
};
Difference differenceOf(const Picture& a, const Picture& b);

}  // namespace bench
