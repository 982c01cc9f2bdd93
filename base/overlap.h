#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <opencv2/core.hpp>

namespace Lumvane {

/// The bytes from the first to the last one of an image's rows, padding between rows included.
struct Extent {
  const uint8_t *first, *end;

  /// Of `rows` rows of `rowBytes` bytes, 1 or more, that start `stride` bytes apart; the stride may be negative.
  Extent(const uint8_t* topRow, ptrdiff_t stride, size_t rowBytes, int rows) {
    const uint8_t* const lastRow = topRow + stride * (rows - 1);
    first = std::min(topRow, lastRow, std::less<>());
    end = std::max(topRow, lastRow, std::less<>()) + rowBytes;
  }

  /// Of a frame with any step.
  explicit Extent(const cv::Mat& frame)
      : Extent(frame.ptr(), static_cast<ptrdiff_t>(frame.step[0]), frame.cols * frame.elemSize(), frame.rows) {}

  bool overlaps(const Extent& other) const {
    return std::less<>()(first, other.end) && std::less<>()(other.first, end);
  }
};

}  // namespace Lumvane
