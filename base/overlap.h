#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <opencv2/core.hpp>

namespace Lumvane {

/// The address range from the first to the last byte of an image's rows, including padding between rows.
struct Extent {
  const uint8_t *first, *end;

  /// For `rows` rows of `rowBytes` bytes, 1 or more, that start `stride` bytes apart; the stride may be negative.
  Extent(const uint8_t* topRow, ptrdiff_t stride, size_t rowBytes, int rows) {
    const uint8_t* const lastRow = topRow + stride * (rows - 1);
    first = std::min(topRow, lastRow, std::less<>());
    end = std::max(topRow, lastRow, std::less<>()) + rowBytes;
  }

  /// For a frame with any step, also a negative one.
  explicit Extent(const cv::Mat& frame)
      : Extent(frame.ptr(), static_cast<ptrdiff_t>(frame.step[0]), frame.cols * frame.elemSize(), frame.rows) {}

  bool overlaps(const Extent& other) const {
    return std::less<>()(first, other.end) && std::less<>()(other.first, end);
  }
};

}  // namespace Lumvane
