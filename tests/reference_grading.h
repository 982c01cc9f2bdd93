// A second evaluation of LUT grading, written by another hand and in the plainest form, to compare with. It shares no
// code with the library.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace reference {

struct Lut {
  int size = 0;
  std::vector<float> points;  // red fastest, then green, then blue; red, green, blue of a point, 0.0 to 255.0

  // x, y, z: red, green, blue index; c: 0 red, 1 green, 2 blue
  float& at(int x, int y, int z, int c) { return points[static_cast<size_t>(((z * size + y) * size + x) * 3 + c)]; }
  float at(int x, int y, int z, int c) const { return const_cast<Lut*>(this)->at(x, y, z, c); }
};

// Half is added ahead of a rounding to nearest with ties to even: 10.2 gives 11, 10.0 gives 10 and 11.0 gives 12. A sum
// that no signed 32-bit integer holds, or a NaN, gives 0.
inline uint8_t roundToByte(float v) {
  const double sum = static_cast<double>(v) + 0.5;
  if (!(sum > 0.0) || sum >= 2147483648.0) return 0;
  int64_t whole = static_cast<int64_t>(sum);
  const double rest = sum - static_cast<double>(whole);
  if (rest > 0.5 || (rest == 0.5 && whole % 2 == 1)) whole += 1;
  if (whole > 2147483647) return 0;
  return static_cast<uint8_t>(whole > 255 ? 255 : whole);
}

struct CellPosition {
  int cell;
  float fraction;
};

inline CellPosition locate(int size, int value) {
  const float step = 255.0f / static_cast<float>(size - 1);
  const float x = static_cast<float>(value) / step;
  const int cell = static_cast<int>(x);  // x is never negative, so this is its floor
  return {cell, x - static_cast<float>(cell)};
}

inline std::array<float, 3> lookup(const Lut& lut, int r, int g, int b) {
  const auto [x, fr] = locate(lut.size, r);
  const auto [y, fg] = locate(lut.size, g);
  const auto [z, fb] = locate(lut.size, b);
  const int x1 = std::min(x + 1, lut.size - 1);
  const int y1 = std::min(y + 1, lut.size - 1);
  const int z1 = std::min(z + 1, lut.size - 1);

  struct Corner {
    int x, y, z;
  };
  struct Tetrahedron {
    float w0;
    Corner a;
    float w1;
    Corner b;
    float w2, w3;
  };
  const Corner c100{x1, y, z}, c010{x, y1, z}, c001{x, y, z1};
  const Corner c110{x1, y1, z}, c101{x1, y, z1}, c011{x, y1, z1};
  Tetrahedron t;
  if (fr > fg && fg > fb) {
    t = {1.0f - fr, c100, fr - fg, c110, fg - fb, fb};
  } else if (fr > fg && fr > fb) {
    t = {1.0f - fr, c100, fr - fb, c101, fb - fg, fg};
  } else if (fr > fg) {
    t = {1.0f - fb, c001, fb - fr, c101, fr - fg, fg};
  } else if (fb > fg) {
    t = {1.0f - fb, c001, fb - fg, c011, fg - fr, fr};
  } else if (fb > fr) {
    t = {1.0f - fg, c010, fg - fb, c011, fb - fr, fr};
  } else {
    t = {1.0f - fg, c010, fg - fr, c110, fr - fb, fb};
  }

  std::array<float, 3> out;
  for (int c = 0; c < 3; ++c) {
    const float p0 = t.w0 * lut.at(x, y, z, c);
    const float p1 = t.w1 * lut.at(t.a.x, t.a.y, t.a.z, c);
    const float p2 = t.w2 * lut.at(t.b.x, t.b.y, t.b.z, c);
    const float p3 = t.w3 * lut.at(x1, y1, z1, c);
    const float sum01 = p0 + p1;
    const float sum012 = sum01 + p2;
    out[static_cast<size_t>(c)] = sum012 + p3;
  }
  return out;
}

// One pixel, blue, green, red, alpha, through the whole effect; strength from 1 to 100 percent.
inline std::array<uint8_t, 4> gradePixel(const Lut& lut, std::array<uint8_t, 4> bgra, int strengthPercent) {
  const int s = strengthPercent * 255 / 100;
  const std::array<float, 3> out = lookup(lut, bgra[2], bgra[1], bgra[0]);
  std::array<uint8_t, 4> graded{roundToByte(out[2]), roundToByte(out[1]), roundToByte(out[0]), bgra[3]};
  for (size_t i = 0; i < 3; ++i) graded[i] = static_cast<uint8_t>(bgra[3] * graded[i] / 255.0 + 0.5);
  for (size_t i = 0; i < 4; ++i) graded[i] = static_cast<uint8_t>((bgra[i] * (255 - s) + graded[i] * s) / 255);
  return graded;
}

}  // namespace reference
