// Holds the vector form of a row kernel against its plain form.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "tests/inputs.h"

namespace test {

/// A kernel from BGRA pixels to BGRA pixels, its other arguments bound.
using RowKernel = std::function<void(const uint8_t* src, uint8_t* dst, size_t pixels)>;

inline std::vector<uint8_t> noise(size_t bytes, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<uint8_t> result(bytes);
  for (uint8_t& byte : result) byte = static_cast<uint8_t>(random());
  return result;
}

/// Every colour once, by steps of kStep, as byte 2, 1, 0 of its number; alpha from `alphaOf`.
template <class AlphaOf>
std::vector<uint8_t> everyColour(const AlphaOf& alphaOf) {
  std::vector<uint8_t> pixels;
  pixels.reserve((size_t{4} << 24) / kStep + 4);
  for (uint32_t i = 0; i < 1u << 24; i += kStep) {
    for (int c = 0; c < 3; ++c) pixels.push_back(static_cast<uint8_t>(i >> (8 * c)));
    pixels.push_back(alphaOf(i));
  }
  return pixels;
}

/// What the two make of the pixels that start `start` bytes into a larger buffer, also in place: nothing when they
/// agree in every byte and leave everything around the pixels alone, otherwise how many bytes differ and the first.
inline std::string rowDifferences(const RowKernel& plain, const RowKernel& vector, const std::vector<uint8_t>& src,
                                  size_t start = 0) {
  constexpr size_t kBorder = 128;
  const size_t pixels = src.size() / 4;
  const size_t begin = kBorder + start;
  std::vector<uint8_t> expected(src.size() + start + 2 * kBorder, 0xA5), apart = expected, inPlace = expected;
  // Of exactly its size, so that the address sanitizer sees a byte read beyond it.
  std::vector<uint8_t> from(start + src.size());
  std::copy(src.begin(), src.end(), from.begin() + static_cast<ptrdiff_t>(start));
  std::copy(src.begin(), src.end(), inPlace.begin() + static_cast<ptrdiff_t>(begin));
  plain(from.data() + start, expected.data() + begin, pixels);
  vector(from.data() + start, apart.data() + begin, pixels);
  vector(inPlace.data() + begin, inPlace.data() + begin, pixels);

  for (const auto& [where, found] : {std::pair{"", &apart}, {" in place", &inPlace}}) {
    if (*found == expected) continue;
    size_t count = 0, first = 0;
    for (size_t i = expected.size(); i-- > 0;) {
      if ((*found)[i] == expected[i]) continue;
      ++count;
      first = i;
    }
    std::ostringstream text;
    text << count << " bytes of " << pixels << " pixels differ" << where << ", the first at "
         << static_cast<ptrdiff_t>(first - begin) << ": " << int{(*found)[first]} << " for " << int{expected[first]};
    return text.str();
  }
  return "";
}

/// The same for noise of all widths up to three of the widest vectors and a little, at all starts within a pixel.
inline std::string rowDifferencesInEveryWidth(const RowKernel& plain, const RowKernel& vector) {
  constexpr size_t kLongest = 3 * 16 + 3;
  for (size_t pixels = 0; pixels <= kLongest; ++pixels) {
    for (size_t start = 0; start < 4; ++start) {
      const std::string found =
          rowDifferences(plain, vector, noise(4 * pixels, static_cast<unsigned>(4 * pixels + start)), start);
      if (!found.empty()) return found;
    }
  }
  return "";
}

}  // namespace test
