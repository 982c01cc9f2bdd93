#include <algorithm>
#include <cmath>

#include "host/drawings.h"
#include "host/hdr_luts.h"

namespace host {
namespace {

// Returns light in cd/m2, BT.2020 primaries.
Colour lightAt(double u, double v, double time) {
  if (v < 0.5) {  // sky and sun
    const double sunX = 0.2 + 0.6 * time;
    const double distance = std::hypot((u - sunX) * 16.0 / 9.0, v - 0.32);
    const double glow = std::exp(-distance * 9.0), horizon = v * 2.0;
    const Colour sky(20 + 90 * horizon, 35 + 45 * horizon, 80 - 30 * horizon), sun(1000, 850, 600);
    return distance < 0.05 ? sun : sky + sun * 0.6 * glow;
  }
  if (v < 0.68) {  // skin, from shade to sunlight
    static const Colour kSkin[] = {{0.72, 0.52, 0.42}, {0.50, 0.33, 0.24}, {0.26, 0.16, 0.11}};
    const double place = u * 3.0;
    return kSkin[static_cast<int>(place)] * (20.0 * std::pow(30.0, place - std::floor(place)));
  }
  if (v < 0.86) {  // saturated colours, 100 cd/m2 above, 600 below
    static const Colour kPatches[] = {{1, 0.05, 0.05}, {1, 0.5, 0.05},  {1, 1, 0.05},   {0.05, 1, 0.05},
                                      {0.05, 1, 1},    {0.05, 0.05, 1}, {0.6, 0.05, 1}, {1, 0.05, 0.6}};
    return kPatches[static_cast<int>(u * 8.0)] * (v < 0.77 ? 100.0 : 600.0);
  }
  return Colour::all(u < 1.0 / 256.0 ? 0.0 : std::pow(10.0, 4.0 * u - 1.0));  // 0.1 to 1000 cd/m2
}

uint8_t code(double value) { return static_cast<uint8_t>(std::clamp(std::lround(value), 0L, 255L)); }

}  // namespace

VideoFrame drawHdrFrame(int width, int height, int index, int frames, bool pq) {
  VideoFrame frame(width, height);
  const double time = frames > 1 ? static_cast<double>(index) / (frames - 1) : 0.0;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const Colour s = hdrSignal(lightAt((x + 0.5) / width, (y + 0.5) / height, time), pq);
      // BT.2020 non-constant luminance; chroma is that of the upper left pixel of each 2 x 2 block.
      const double luma = 0.2627 * s[0] + 0.6780 * s[1] + 0.0593 * s[2];
      frame.planes[0](y, x) = code(16 + 219 * luma);
      if (x % 2 != 0 || y % 2 != 0) continue;
      frame.planes[1](y / 2, x / 2) = code(128 + 224 * (s[2] - luma) / 1.8814);
      frame.planes[2](y / 2, x / 2) = code(128 + 224 * (s[0] - luma) / 1.4746);
    }
  }
  return frame;
}

}  // namespace host
