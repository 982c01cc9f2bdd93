#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

#include "host/drawings.h"

namespace host {
namespace {

using Bgr = cv::Vec3f;  // from 0 to 1

// Fills an area, in fractions of the picture's width and height. Paint(u, v) returns the colour at a place in it,
// u and v from 0 to 1.
template <class Paint>
void fill(cv::Mat& picture, const cv::Rect2d& area, const Paint& paint) {
  const auto pixels = [](double place, int size) { return static_cast<int>(std::lround(place * size)); };
  const cv::Point from(pixels(area.x, picture.cols), pixels(area.y, picture.rows));
  const cv::Point to(pixels(area.x + area.width, picture.cols), pixels(area.y + area.height, picture.rows));
  picture(cv::Rect(from, to)).forEach<cv::Vec4b>([&](cv::Vec4b& pixel, const int* at) {
    const Bgr colour = paint((at[1] + 0.5f) / (to.x - from.x), (at[0] + 0.5f) / (to.y - from.y));
    for (int c = 0; c < 3; ++c) pixel[c] = cv::saturate_cast<uint8_t>(colour[c] * 255.0f);
    pixel[3] = 255;
  });
}

Bgr rgb(int hex) { return Bgr(hex & 255, (hex >> 8) & 255, hex >> 16) / 255.0f; }

Bgr hue(float turn) {
  const auto channel = [turn](float offset) {
    const float x = std::fmod(turn + offset, 1.0f) * 6.0f;
    return std::clamp(std::abs(x - 3.0f) - 1.0f, 0.0f, 1.0f);
  };
  return {channel(1.0f / 3.0f), channel(2.0f / 3.0f), channel(0.0f)};
}

// A ball lit from the upper left on a dim ground.
Bgr ball(const Bgr& colour, float u, float v) {
  const float x = (u - 0.5f) * 2.2f, y = (v - 0.5f) * 2.2f;
  const float squared = x * x + y * y;
  if (squared > 1.0f) return Bgr(0.20f, 0.19f, 0.18f) * (1.1f - 0.4f * v);
  const float lit = std::max(0.0f, -0.5f * x - 0.6f * y + 0.62f * std::sqrt(1.0f - squared));
  return colour * (0.25f + 0.85f * lit) + Bgr::all(0.18f * std::pow(lit, 24.0f));
}

// Returns noise with detail at every scale, roughly between 0 and 1.
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

}  // namespace

cv::Mat drawScene(int width, int height) {
  cv::Mat picture(height, width, CV_8UC4, cv::Scalar::all(0));

  // Evening sky behind everything on the left.
  fill(picture, {0.0, 0.0, 0.7, 0.34}, [](float u, float v) -> Bgr {
    const Bgr sky = rgb(0x3a6ea8) * (1.0f - v) + rgb(0xf2c79a) * v;
    const float sun = std::exp(-40.0f * ((u - 0.75f) * (u - 0.75f) + (v - 0.8f) * (v - 0.8f) * 0.3f));
    return sky + Bgr(0.25f, 0.35f, 0.45f) * sun;
  });

  constexpr int kSkin[] = {0xf6d7c3, 0xe8b899, 0xc98f68, 0xa56b46, 0x7a4a2e, 0x4a2d20};
  for (size_t i = 0; i < std::size(kSkin); ++i) {
    fill(picture, {0.7 / std::size(kSkin) * i, 0.34, 0.7 / std::size(kSkin), 0.22},
         [&](float u, float v) { return ball(rgb(kSkin[i]), u, v); });
  }

  const cv::Mat stone = fractalNoise({512, 192});
  fill(picture, {0.7, 0.56, 0.3, 0.16}, [&](float u, float v) -> Bgr {
    const float relief = stone.at<float>(static_cast<int>(v * 192.0f), static_cast<int>(u * 512.0f));
    return rgb(0x9a8f80) * (0.55f + 0.7f * relief);
  });

  constexpr int kPatches[] = {0xd01c1c, 0xe6801a, 0xf2d21b, 0x2fa83c, 0x17a5a8, 0x2344c4, 0x7a2ab0, 0xd62c8f};
  for (size_t i = 0; i < std::size(kPatches); ++i) {
    fill(picture, {0.7 / std::size(kPatches) * i, 0.56, 0.7 / std::size(kPatches), 0.16},
         [&](float, float) { return rgb(kPatches[i]); });
  }

  fill(picture, {0.0, 0.72, 1.0, 0.07}, [](float u, float) { return Bgr::all(u); });
  fill(picture, {0.0, 0.79, 1.0, 0.07}, [](float u, float) { return Bgr::all(std::floor(u * 17.0f) / 16.0f); });
  fill(picture, {0.0, 0.86, 1.0, 0.14}, [](float u, float v) -> Bgr {
    return v < 0.5f ? hue(u) * (2.0f * v) : hue(u) * (2.0f - 2.0f * v) + Bgr::all(2.0f * v - 1.0f);
  });

  // A disc from white to red, with alpha falling towards the rim.
  const int side = std::min(static_cast<int>(0.26 * width), static_cast<int>(0.5 * height));
  const cv::Point corner(static_cast<int>(0.85 * width) - side / 2, static_cast<int>(0.28 * height) - side / 2);
  picture(cv::Rect(corner, cv::Size(side, side))).forEach<cv::Vec4b>([side](cv::Vec4b& pixel, const int* at) {
    const float u = (at[1] + 0.5f) / side, v = (at[0] + 0.5f) / side;
    const float alpha = 320.0f * (1.0f - std::hypot(u - 0.5f, v - 0.5f) * 2.0f);
    pixel = cv::Vec4f(40 + 215 * (1.0f - v), 60 + 195 * (1.0f - v), 230, alpha);
  });
  return picture;
}

}  // namespace host
