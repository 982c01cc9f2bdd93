// The HDR path by bands, for runParallel. A worker serves one run and owns nothing.
#pragma once

#include <opencv2/core.hpp>

#include "apply/hdr_cache.h"

namespace Lumvane {

/// Fills the cache of all 2^24 colours from a lattice. A band is `planesPerBand` values of red.
class parallelCacheCubeLut_ : public cv::ParallelLoopBody {
 public:
  int32_t planesPerBand;
  int32_t latticeSize;
  const float* fraction;
  const int32_t* cell;
  HdrLattice lattice;
  RGB8* cacheData;

  void operator()(const cv::Range& range) const override;
};

/// Maps the bands of a BGRA frame whose numbers it is given: through the cache or, when that is empty, through the
/// lattice.
class parallelCubeLut_ : public cv::ParallelLoopBody {
 public:
  cv::Mat* dst;
  const cv::Mat* src;
  int32_t bands;
  int32_t latticeSize;
  const float* fraction;
  const int32_t* cell;
  HdrLattice lattice;
  const HdrCache* cache;

  void operator()(const cv::Range& range) const override;
};

}  // namespace Lumvane
