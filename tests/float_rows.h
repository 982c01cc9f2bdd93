// Rows of floats for kernels to work on, and their comparison bit for bit.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace test {

/// A number with the two floats before and behind it.
inline std::vector<float> neighbours(float x) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  const float below = std::nextafterf(x, -kInfinity), above = std::nextafterf(x, kInfinity);
  return {std::nextafterf(below, -kInfinity), below, x, above, std::nextafterf(above, kInfinity)};
}

/// From 0 to 1.
inline std::vector<float> randomFloats(size_t count, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<float> result(count);
  for (float& number : result) number = std::ldexp(static_cast<float>(random() >> 8), -24);
  return result;
}

/// Nothing when the two agree in every bit, otherwise the first place where they don't.
inline std::string firstDifference(const std::vector<float>& expected, const std::vector<float>& found) {
  if (std::memcmp(expected.data(), found.data(), expected.size() * sizeof(float)) == 0) return "";
  for (size_t i = 0; i < expected.size(); ++i) {
    if (std::memcmp(&expected[i], &found[i], sizeof(float)) == 0) continue;
    std::ostringstream text;
    text << std::hexfloat << found[i] << " for " << expected[i] << " at " << std::dec << i;
    return text.str();
  }
  return "";
}

}  // namespace test
