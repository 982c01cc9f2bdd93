// How frames and tables are divided for threads. A range of part numbers is what a cv::ParallelLoopBody receives.
#pragma once

#include <cstdint>
#include <opencv2/core/types.hpp>

namespace Lumvane {

/// The number of bands of a large LUT or HDR frame and of an HDR cache, whatever the number of threads.
inline constexpr int32_t kBands = 8;

/// Rows from first up to, but not including, end.
struct BandRows {
  int first, end;
};

/// The rows of bands of rows / bands each; the last band has the remainder as well.
inline BandRows bandRows(const cv::Range& range, int rows, int bands) {
  const int height = rows / bands;
  return {range.start * height, range.end == bands ? rows : range.end * height};
}

/// The rows of stripes that differ by one row at most: a small plane may have fewer rows than stripes.
inline BandRows stripeRows(const cv::Range& range, int rows, int stripes) {
  const auto start = [&](int stripe) { return static_cast<int>(int64_t{stripe} * rows / stripes); };
  return {start(range.start), start(range.end)};
}

}  // namespace Lumvane
