// The HDR path in bands, for runParallel. A worker is used for one run and owns nothing.
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

/// Maps the bands of a BGRA frame whose numbers are in the range: through the cache or, if it is empty, through the
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
