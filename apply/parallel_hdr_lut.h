// The HDR path in bands, for runParallel. A worker is used for one run and owns nothing.
#pragma once

#include <opencv2/core.hpp>

#include "apply/hdr_cache.h"

namespace Lumvane {

/// Fills the cache of all 2^24 colours from a lattice. A band is `planesPerBand` values of red.
class parallelCacheCubeLut_ : public cv::ParallelLoopBody {
 public:
  int32_t planesPerBand;
  HdrLatticeView lut;
  RGB8* cacheData;

  parallelCacheCubeLut_(int32_t planes, const HdrLatticeView& view, HdrCache& cache)
      : planesPerBand(planes), lut(view), cacheData(cache.data()) {}
  void operator()(const cv::Range& range) const override;
};

/// Maps the bands of a BGRA frame whose numbers are in the range: through the cache or, if it is empty, through the
/// lattice.
class parallelCubeLut_ : public cv::ParallelLoopBody {
 public:
  cv::Mat* dst;
  const cv::Mat* src;
  int32_t bands;
  HdrLatticeView lut;
  const HdrCache* cache;

  parallelCubeLut_(cv::Mat& to, const cv::Mat& from, int32_t count, const HdrLatticeView& view, const HdrCache& entries)
      : dst(&to), src(&from), bands(count), lut(view), cache(&entries) {}
  void operator()(const cv::Range& range) const override;
};

}  // namespace Lumvane
