#pragma once

#include <opencv2/core.hpp>

#include "apply/hdr_lattice.h"
#include "hdr/video_adjust_color.h"
#include "hdr/yv12_planes.h"

namespace Lumvane {

/// Takes a frame from planes to planes in one go, row by row, so that the pixels between the conversions and the LUT
/// never leave the processor's caches. Source and destination must not overlap. Made for one run; owns nothing.
class HdrBands : public cv::ParallelLoopBody {
 public:
  /// `cache` holds what the LUT makes of every colour.
  HdrBands(const VideoAdjustColor& object, const RGB8* cache, const Yv12Planes<const uint8_t>& src,
           const Yv12Planes<uint8_t>& dst);

  /// How many bands there are: two a thread, as long as they have four pairs of rows or more.
  int count() const { return count_; }

  void operator()(const cv::Range& range) const override;

 private:
  void convert(int firstRow, int endRow) const;

  const VideoAdjustColor& object_;
  const RGB8* cache_;
  Yv12Planes<const uint8_t> src_;
  Yv12Planes<uint8_t> dst_;
  ToRgb toRgb_;
  FromRgb fromRgb_;
  int count_;
};

}  // namespace Lumvane
