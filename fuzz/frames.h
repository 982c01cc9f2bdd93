// Shared by the fuzz targets that process frames.
#pragma once

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace fuzz {

using Bytes = std::vector<uint8_t>;

/// Reads the input as numbers of one byte each. Past the end it returns zeros.
class Input {
 public:
  Input(const uint8_t* data, size_t size) : at_(data), end_(data + size) {}
  int32_t take() { return at_ == end_ ? 0 : int32_t{*at_++}; }
  float takeFloat() {
    uint32_t bits = 0;
    for (int i = 0; i < 4; ++i) bits |= static_cast<uint32_t>(take()) << 8 * i;
    return std::bit_cast<float>(bits);
  }
  Bytes rest() const { return {at_, end_}; }

 private:
  const uint8_t *at_, *end_;
};

/// Rows in a buffer of exactly their size, so that the address sanitizer detects any access outside. The bytes, padding
/// included, repeat `pattern`. Stride 0 means packed rows.
struct Plane {
  Plane(int32_t rowBytes, int32_t rows, int32_t stride, const Bytes& pattern)
      : height(rows),
        step(stride == 0 ? rowBytes : stride),
        bytes(static_cast<size_t>(std::abs(step) * (rows - 1) + rowBytes)) {
    for (size_t i = 0; i < bytes.size() && !pattern.empty(); ++i) bytes[i] = pattern[i % pattern.size()];
  }
  uint8_t* row(int32_t y) { return bytes.data() + ptrdiff_t{step} * (step < 0 ? y - (height - 1) : y); }

  int32_t height, step;
  Bytes bytes;
};

}  // namespace fuzz
