// A second evaluation of the clarity effect, written by another hand and in the plainest form, to compare with: one
// thread, no bands, the float operations one by one. It shares with the library only OpenCV's resampling and blend.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace reference {

struct HueSaturationValue {
  float h, s, v;  // degrees from 0 to 360; 0 to 1; 0 to 1
};

inline float saturationFactor(int saturation) {
  const float fraction = std::clamp(static_cast<float>(saturation), -100.0f, 100.0f) * 0.01f;
  const float span = fraction * 0.15f;
  return span + 1.0f;
}

// bgr points at three bytes; factor multiplies the saturation.
inline HueSaturationValue decode(const uint8_t* bgr, float factor) {
  const float guard = 1.1920929e-07f;  // 2^-23
  const float r = static_cast<float>(bgr[2]) / 255.0f;
  const float g = static_cast<float>(bgr[1]) / 255.0f;
  const float b = static_cast<float>(bgr[0]) / 255.0f;
  float v = r;
  if (g > v) v = g;
  if (b > v) v = b;
  float m = r;
  if (r > g) m = g;
  if (m > b) m = b;
  const float diff = v - m;
  float s = diff / (::fabsf(v) + guard);
  const float k = 60.0f / (diff + guard);
  float h;
  if (v == r) {  // a tie goes to red, then to green
    h = (g - b) * k;
  } else if (v == g) {
    h = (b - r) * k;
    h = h + 120.0f;
  } else {
    h = (r - g) * k;
    h = h + 240.0f;
  }
  if (h < 0.0f) h = h + 360.0f;
  s = factor * s;
  return {h, std::clamp(s, 0.0f, 1.0f), v};
}

inline uint8_t encodeByte(float c) {
  const float scaled = std::clamp(c, 0.0f, 1.0f) * 255.0f;
  const float shifted = scaled + 0.5f;
  return static_cast<uint8_t>(static_cast<int>(shifted));
}

inline void encode(const HueSaturationValue& p, uint8_t* bgr) {
  // For each sector of 60 degrees the entries of tab that make blue, green and red.
  static const int order[6][3] = {{1, 3, 0}, {1, 0, 2}, {3, 0, 1}, {0, 2, 1}, {0, 1, 3}, {2, 1, 0}};
  if (p.s == 0.0f) {
    bgr[0] = bgr[1] = bgr[2] = encodeByte(p.v);
    return;
  }
  const float turns = p.h * 0.016666668f;
  const float x = ::fmodf(turns, 6.0f);
  const int sector = static_cast<int>(x);
  const float f = x - static_cast<float>(sector);
  const float fs = f * p.s;
  const float rest = 1.0f - f;
  const float restS = rest * p.s;
  const float tab[4] = {p.v, (1.0f - p.s) * p.v, (1.0f - fs) * p.v, (1.0f - restS) * p.v};
  for (int i = 0; i < 3; ++i) bgr[i] = encodeByte(tab[order[sector][i]]);
}

// Plane with each sample of the result computed by op from the samples of two equal-sized planes.
template <class Op>
inline cv::Mat combine(const cv::Mat& a, const cv::Mat& b, Op op) {
  cv::Mat out(a.rows, a.cols, CV_32FC1);
  for (int y = 0; y < a.rows; ++y)
    for (int x = 0; x < a.cols; ++x) out.at<float>(y, x) = op(a.at<float>(y, x), b.at<float>(y, x));
  return out;
}

inline cv::Mat clampPlane(const cv::Mat& a) {
  return combine(a, a, [](float p, float) { return std::clamp(p, 0.0f, 1.0f); });
}

inline cv::Mat down(const cv::Mat& in) {
  if (in.cols < 2 || in.rows < 2) return in.clone();  // one column or one row shrinks no further
  cv::Mat out;
  cv::pyrDown(in, out, cv::Size(), cv::BORDER_REFLECT_101);
  return out;
}

inline cv::Mat up(const cv::Mat& in, cv::Size size) {
  if (in.size() == size) return in.clone();
  cv::Mat out;
  cv::pyrUp(in, out, size, cv::BORDER_REFLECT_101);
  return out;
}

// A local difference d grows by 55 percent near 0 and hardly at all from 0.5 on.
inline float raise(float fine, float coarse) {
  const float d = fine - coarse;
  const float dd = d * d;
  const float e = dd * 22.222221f;                                             // 1 / (2 * 0.15 * 0.15)
  const float w = static_cast<float>(std::exp(-static_cast<long double>(e)));  // rounded correctly
  const float boost = d * 0.55f;
  const float boostW = boost * w;
  return boostW + d;
}

// The value plane with its local contrast raised; the result may leave 0 .. 1.
inline cv::Mat enhance(const cv::Mat& value, int levels) {
  const int n = levels > 1 ? levels : 1;
  std::vector<cv::Mat> gaussian{value};
  for (int i = 1; i < n; ++i) gaussian.push_back(down(gaussian[i - 1]));
  cv::Mat current = gaussian[n - 1].clone();
  for (int i = n - 2; i >= 0; --i) {
    const cv::Mat detail = combine(gaussian[i], up(gaussian[i + 1], gaussian[i].size()), raise);
    const cv::Mat wide = up(current, gaussian[i].size());
    current = combine(wide, detail, [](float p, float q) { return p + q; });
  }
  return current;
}

// The value plane blended with the enhanced one: 0 gives the plain, 100 the enhanced plane.
inline cv::Mat blend(const cv::Mat& value, int levels, int intensity) {
  const float t = std::clamp(static_cast<float>(intensity), 0.0f, 100.0f) * 0.01f;
  const cv::Mat enhanced = clampPlane(enhance(value, levels));
  if (!(t > 0.0f)) return value;
  const float rest = 1.0f - t;
  cv::Mat blended;
  cv::addWeighted(value, static_cast<double>(rest), enhanced, static_cast<double>(t), 0.0, blended, -1);
  return clampPlane(blended);
}

// The whole effect on one frame: packed BGRA bytes in, packed BGRA bytes out.
inline std::vector<uint8_t> clarity(const std::vector<uint8_t>& bgra, int width, int height, int levels, int saturation,
                                    int intensity) {
  const float factor = saturationFactor(saturation);
  const size_t pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
  std::vector<HueSaturationValue> hsv(pixels);
  cv::Mat value(height, width, CV_32FC1);
  for (size_t i = 0; i < pixels; ++i) {
    hsv[i] = decode(&bgra[i * 4], factor);
    value.ptr<float>()[i] = hsv[i].v;
  }
  const cv::Mat blended = blend(value, levels, intensity);
  std::vector<uint8_t> out(pixels * 4);
  for (size_t i = 0; i < pixels; ++i) {
    hsv[i].v = blended.ptr<float>()[i];
    encode(hsv[i], &out[i * 4]);
    out[i * 4 + 3] = bgra[i * 4 + 3];
  }
  return out;
}

}  // namespace reference
