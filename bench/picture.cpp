#include "bench/picture.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace bench {
namespace {

constexpr int kByteOfPlane[3] = {1, 0, 2};  // green, blue, red in BGRA

}  // namespace

Picture toFloatPlanes(const Picture& bgra) {
  Picture out = {"gbrpf32le", bgra.width, bgra.height, {}};
  const std::vector<uint8_t>& pixels = bgra.planes[0];
  for (const int byte : kByteOfPlane) {
    std::vector<uint8_t> plane(pixels.size());
    for (size_t i = 0; i < pixels.size(); i += 4) {
      const float value = static_cast<float>(pixels[i + byte]) / 255.0f;
      std::memcpy(&plane[i], &value, sizeof value);
    }
    out.planes.push_back(std::move(plane));
  }
  return out;
}

Picture fromFloatPlanes(const Picture& floats) {
  Picture out = {"bgra", floats.width, floats.height, {std::vector<uint8_t>(floats.planes[0].size(), 255)}};
  for (size_t p = 0; p < 3; ++p) {
    for (size_t i = 0; i < out.planes[0].size(); i += 4) {
      float value;
      std::memcpy(&value, &floats.planes[p][i], sizeof value);
      out.planes[0][i + kByteOfPlane[p]] = static_cast<uint8_t>(std::lround(255.0f * std::clamp(value, 0.0f, 1.0f)));
    }
  }
  return out;
}

Picture toYuv420(const Picture& bgra) {
  const int width = bgra.width, height = bgra.height;
  const size_t chromaWidth = (width + 1) / 2, chromaBytes = chromaWidth * ((height + 1) / 2);
  std::vector<uint8_t> luma(size_t{1} * width * height);
  std::vector<float> cb(chromaBytes), cr(chromaBytes), count(chromaBytes);
  for (size_t i = 0; i < luma.size(); ++i) {
    const uint8_t* pixel = &bgra.planes[0][4 * i];
    const float blue = pixel[0] / 255.0f, red = pixel[2] / 255.0f;
    const float y = 0.2627f * red + 0.6780f * (pixel[1] / 255.0f) + 0.0593f * blue;
    luma[i] = static_cast<uint8_t>(std::lround(16.0f + 219.0f * y));
    const size_t place = i / width / 2 * chromaWidth + i % width / 2;
    cb[place] += (blue - y) / 1.8814f;
    cr[place] += (red - y) / 1.4746f;
    count[place] += 1.0f;
  }
  Picture out = {"yuv420p", width, height, {luma, {}, {}}};
  for (size_t i = 0; i < chromaBytes; ++i) {
    out.planes[1].push_back(static_cast<uint8_t>(std::lround(128.0f + 224.0f * cb[i] / count[i])));
    out.planes[2].push_back(static_cast<uint8_t>(std::lround(128.0f + 224.0f * cr[i] / count[i])));
  }
  return out;
}

Difference differenceOf(const Picture& a, const Picture& b) {
  Difference out;
  size_t bytes = 0;
  double sum = 0.0;
  for (size_t p = 0; p < a.planes.size(); ++p) {
    for (size_t i = 0; i < a.planes[p].size(); ++i) {
      const int difference = std::abs(int{a.planes[p][i]} - int{b.planes.at(p).at(i)});
      out.most = std::max(out.most, difference);
      sum += difference;
    }
    bytes += a.planes[p].size();
  }
  if (bytes > 0) out.mean = sum / static_cast<double>(bytes);
  return out;
}

}  // namespace bench
