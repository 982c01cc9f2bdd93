#include "host/scene.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <opencv2/imgproc.hpp>

namespace host {
namespace {

using Colour = cv::Vec3f;  // blue, green, red from 0 to 1

// The scene is laid out in fractions of the picture's width and height.
struct Canvas {
  cv::Mat picture;

  template <class Paint>  // Paint(u, v) gives the colour at a place within the area, u and v from 0 to 1
  void fill(const cv::Rect2d& area, const Paint& paint) {
    const int left = static_cast<int>(std::lround(area.x * picture.cols));
    const int right = static_cast<int>(std::lround((area.x + area.width) * picture.cols));
    const int top = static_cast<int>(std::lround(area.y * picture.rows));
    const int bottom = static_cast<int>(std::lround((area.y + area.height) * picture.rows));
    for (int y = top; y < bottom; ++y) {
      for (int x = left; x < right; ++x) {
        const Colour colour = paint((x + 0.5f - left) / (right - left), (y + 0.5f - top) / (bottom - top));
        auto& pixel = picture.at<cv::Vec4b>(y, x);
        for (int c = 0; c < 3; ++c) pixel[c] = cv::saturate_cast<uint8_t>(colour[c] * 255.0f);
        pixel[3] = 255;
      }
    }
  }
};

Colour rgb(int hex) { return Colour(hex & 255, (hex >> 8) & 255, hex >> 16) / 255.0f; }

Colour hue(float turn) {
  const auto channel = [turn](float offset) {
    const float x = std::fmod(turn + offset, 1.0f) * 6.0f;
    return std::clamp(std::abs(x - 3.0f) - 1.0f, 0.0f, 1.0f);
  };
  return {channel(1.0f / 3.0f), channel(2.0f / 3.0f), channel(0.0f)};
}

// A ball lit from the upper left on a dim ground.
Colour ball(const Colour& colour, float u, float v) {
  const float x = (u - 0.5f) * 2.2f, y = (v - 0.5f) * 2.2f;
  const float squared = x * x + y * y;
  if (squared > 1.0f) return Colour(0.20f, 0.19f, 0.18f) * (1.1f - 0.4f * v);
  const float lit = std::max(0.0f, -0.5f * x - 0.6f * y + 0.62f * std::sqrt(1.0f - squared));
  return colour * (0.25f + 0.85f * lit) + Colour::all(0.18f * std::pow(lit, 24.0f));
}

// Clumps upon clumps, from coarse to fine, between 0 and 1: something with detail at every scale.
cv::Mat fractalNoise(cv::Size size) {
  cv::RNG random(20);
  cv::Mat sum(size, CV_32FC1, cv::Scalar(0.5)), octave;
  float amplitude = 0.25f;
  for (int cell = size.height; cell >= 1; cell /= 2, amplitude *= 0.62f) {
    cv::Mat coarse(size.height / cell + 2, size.width / cell + 2, CV_32FC1);
    random.fill(coarse, cv::RNG::UNIFORM, -amplitude, amplitude);
    cv::resize(coarse, octave, size, 0.0, 0.0, cv::INTER_CUBIC);
    sum += octave;
  }
  return sum;
}

// A disc whose colours run from white to red and whose alpha falls from its centre to its rim.
void drawTranslucentDisc(cv::Mat& picture, cv::Rect area) {
  for (int y = 0; y < area.height; ++y) {
    for (int x = 0; x < area.width; ++x) {
      const float u = (x + 0.5f) / area.width, v = (y + 0.5f) / area.height;
      const float distance = std::hypot(u - 0.5f, v - 0.5f) * 2.0f;
      const float white = std::clamp(1.0f - v, 0.0f, 1.0f);
      picture.at<cv::Vec4b>(area.y + y, area.x + x) = {cv::saturate_cast<uint8_t>(40 + 215 * white),
                                                       cv::saturate_cast<uint8_t>(60 + 195 * white), 230,
                                                       cv::saturate_cast<uint8_t>(320.0f * (1.0f - distance))};
    }
  }
}

}  // namespace

cv::Mat drawScene(int width, int height) {
  Canvas canvas{cv::Mat(height, width, CV_8UC4, cv::Scalar::all(0))};

  // Evening sky behind everything on the left.
  canvas.fill({0.0, 0.0, 0.7, 0.34}, [](float u, float v) -> Colour {
    const Colour sky = rgb(0x3a6ea8) * (1.0f - v) + rgb(0xf2c79a) * v;
    const float sun = std::exp(-40.0f * ((u - 0.75f) * (u - 0.75f) + (v - 0.8f) * (v - 0.8f) * 0.3f));
    return sky + Colour(0.25f, 0.35f, 0.45f) * sun;
  });

  constexpr std::array kSkin = {0xf6d7c3, 0xe8b899, 0xc98f68, 0xa56b46, 0x7a4a2e, 0x4a2d20};
  for (size_t i = 0; i < kSkin.size(); ++i) {
    canvas.fill({0.7 / kSkin.size() * i, 0.34, 0.7 / kSkin.size(), 0.22},
                [&](float u, float v) { return ball(rgb(kSkin[i]), u, v); });
  }

  const cv::Mat stone = fractalNoise({512, 192});
  canvas.fill({0.7, 0.56, 0.3, 0.16}, [&](float u, float v) -> Colour {
    const float relief = stone.at<float>(static_cast<int>(v * 192.0f), static_cast<int>(u * 512.0f));
    return rgb(0x9a8f80) * (0.55f + 0.7f * relief);
  });

  constexpr std::array kPatches = {0xd01c1c, 0xe6801a, 0xf2d21b, 0x2fa83c, 0x17a5a8, 0x2344c4, 0x7a2ab0, 0xd62c8f};
  for (size_t i = 0; i < kPatches.size(); ++i) {
    canvas.fill({0.7 / kPatches.size() * i, 0.56, 0.7 / kPatches.size(), 0.16},
                [&](float, float) { return rgb(kPatches[i]); });
  }

  canvas.fill({0.0, 0.72, 1.0, 0.07}, [](float u, float) { return Colour::all(u); });
  canvas.fill({0.0, 0.79, 1.0, 0.07}, [](float u, float) { return Colour::all(std::floor(u * 17.0f) / 16.0f); });
  canvas.fill({0.0, 0.86, 1.0, 0.14}, [](float u, float v) -> Colour {
    return v < 0.5f ? hue(u) * (2.0f * v) : hue(u) * (2.0f - 2.0f * v) + Colour::all(2.0f * v - 1.0f);
  });

  const int side = std::min(static_cast<int>(0.26 * width), static_cast<int>(0.5 * height));
  drawTranslucentDisc(canvas.picture, {static_cast<int>(0.85 * width) - side / 2,
                                       static_cast<int>(0.28 * height) - side / 2, side, side});
  return canvas.picture;
}

}  // namespace host
