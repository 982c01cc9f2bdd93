#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "hdr/yv12_conversions.h"
#include "tests/yv12.h"

namespace {

using test::Frame;
using test::Yv12Frame;

void toRgb(bool limited, Yv12Frame& from, Frame& rgba) {
  (limited ? imageYV12ToRGBBT2020_Limited : imageYV12ToRGBBT2020_FULL)(
      from.y.data(), from.y.step(), from.v.data(), from.v.step(), from.u.data(), from.u.step(), rgba.data(),
      rgba.step(), rgba.width, rgba.height);
}

void fromRgb(bool limited, Frame& rgba, Yv12Frame& to) {
  (limited ? imageRGBAToYV12BT709_Limited : imageRGBAToYV12BT709_Full)(
      rgba.data(), rgba.step(), to.y.data(), to.y.step(), to.v.data(), to.v.step(), to.u.data(), to.u.step(),
      rgba.width, rgba.height);
}

// A byte of a frame whose outermost pixels go on beyond its edges.
double at(Frame& frame, int x, int y, int c = 0) {
  const int pixelBytes = frame.rowBytes / frame.width;
  return frame.row(std::clamp(y, 0, frame.height - 1))[std::clamp(x, 0, frame.width - 1) * pixelBytes + c];
}

// The published formulas in double precision, R'G'B' from 0 to 255, code values not rounded.
struct Model {
  double kr, kb, black, luma, chroma;
  Model(double r, double b, bool limited)
      : kr(r), kb(b), black(limited ? 16 : 0), luma(limited ? 219 : 255), chroma(limited ? 224 : 255) {}

  std::array<double, 3> bgr(double y, double cb, double cr) const {
    const double grey = (y - black) / luma, b = (cb - 128) / chroma, r = (cr - 128) / chroma;
    const double red = grey + 2 * (1 - kr) * r, blue = grey + 2 * (1 - kb) * b;
    const double green = (grey - kr * red - kb * blue) / (1 - kr - kb);
    return {blue * 255, green * 255, red * 255};
  }
  std::array<double, 3> yCbCr(double blue, double green, double red) const {
    const double grey = (kr * red + (1 - kr - kb) * green + kb * blue) / 255;
    return {black + luma * grey, 128 + chroma * (blue / 255 - grey) / (2 * (1 - kb)),
            128 + chroma * (red / 255 - grey) / (2 * (1 - kr))};
  }
};

double distance(double model, int byte) { return std::abs(std::clamp(model, 0.0, 255.0) - byte); }

// Chroma at a pixel: half-way between rows, on the left column of each pair.
double chromaAt(Frame& plane, int x, int y) {
  const double column = x / 2.0, row = (y - 0.5) / 2.0;
  const int left = static_cast<int>(std::floor(column)), upper = static_cast<int>(std::floor(row));
  const double toRight = column - left, toLower = row - upper;
  return (at(plane, left, upper) * (1 - toRight) + at(plane, left + 1, upper) * toRight) * (1 - toLower) +
         (at(plane, left, upper + 1) * (1 - toRight) + at(plane, left + 1, upper + 1) * toRight) * toLower;
}

// A colour at a chroma sample: a triangle that reaches 2 pixels to each side.
double colourAt(Frame& rgba, int c, int chromaX, int chromaY) {
  double sum = 0, weights = 0;
  for (int y = 2 * chromaY - 2; y <= 2 * chromaY + 3; ++y) {
    for (int x = 2 * chromaX - 2; x <= 2 * chromaX + 2; ++x) {
      const double weight =
          std::max(0.0, 2 - std::abs(x - 2.0 * chromaX)) * std::max(0.0, 2 - std::abs(y - (2.0 * chromaY + 0.5)));
      sum += weight * at(rgba, x, y, c);
      weights += weight;
    }
  }
  return sum / weights;
}

class Yv12Test : public testing::TestWithParam<bool> {};

TEST_P(Yv12Test, FiltersChromaAsItIsSited) {
  const bool limited = GetParam();
  const Model in(0.2627, 0.0593, limited), out(0.2126, 0.0722, limited);
  for (const auto& [width, height] : {std::pair{1, 1}, {2, 1}, {1, 2}, {3, 3}, {4, 6}, {17, 33}, {640, 480}}) {
    Yv12Frame frame(width, height, 3), back(width, height, 3);
    Frame rgba(width, height, 4 * width + 3);
    frame.fill(test::harshNoise(size_t{2} * width * height + 8, 1));
    toRgb(limited, frame, rgba);
    double worst = 0;
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        const auto expected = in.bgr(at(frame.y, x, y), chromaAt(frame.u, x, y), chromaAt(frame.v, x, y));
        for (int c = 0; c < 3; ++c) worst = std::max(worst, distance(expected[c], rgba.row(y)[4 * x + c]));
        EXPECT_EQ(rgba.row(y)[4 * x + 3], 255);
      }
    }
    rgba.fill(test::harshNoise(size_t{4} * width * height, 4));
    fromRgb(limited, rgba, back);
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        const uint8_t* pixel = rgba.row(y) + 4 * x;
        worst = std::max(worst, distance(out.yCbCr(pixel[0], pixel[1], pixel[2])[0], back.y.row(y)[x]));
      }
    }
    for (int y = 0; y < (height + 1) / 2; ++y) {
      for (int x = 0; x < (width + 1) / 2; ++x) {
        const auto expected = out.yCbCr(colourAt(rgba, 0, x, y), colourAt(rgba, 1, x, y), colourAt(rgba, 2, x, y));
        worst = std::max({worst, distance(expected[1], back.u.row(y)[x]), distance(expected[2], back.v.row(y)[x])});
      }
    }
    EXPECT_LT(worst, 0.51) << width << " x " << height;
  }
}

INSTANTIATE_TEST_SUITE_P(Range, Yv12Test, testing::Bool(),
                         [](const auto& info) { return info.param ? "Limited" : "Full"; });

}  // namespace
