#include "hdr/hdr_frame.h"

#include <algorithm>
#include <chrono>
#include <opencv2/core.hpp>

#include "apply/hdr_kernels.h"
#include "apply/lattice.h"
#include "apply/parallel_hdr_lut.h"
#include "base/band_rows.h"
#include "base/parallel.h"
#include "hdr/hdr_shared.h"
#include "hdr/yv12_conversions.h"
#include "hdr/yv12_planes.h"

namespace Lumvane {
namespace {

constexpr int64_t kMinPixelsOnThreads = 10000;
constexpr int kMinPairsPerBand = 4;
constexpr int kRowsKept = 4;  // a pair of rows, and the rows above and below it for its chroma

// Converts a frame from planes to planes in one pass, row by row, so that intermediate pixels stay in the processor's
// caches. Source and destination must not overlap. Used for one run; owns nothing.
class HdrBands : public cv::ParallelLoopBody {
 public:
  HdrBands(const VideoAdjustColor& object, const HdrTransferData& shared, const Yv12Planes<const uint8_t>& src,
           const Yv12Planes<uint8_t>& dst, bool interpolates)
      : object_(object),
        lut_{shared.latticeSize, object.fraction, object.cell, shared.lattice[0][0]},
        cache_(shared.cache.data()),
        interpolates_(interpolates),
        src_(src),
        dst_(dst),
        toRgb_(toRgb(kBt2020, object.limitedRange != 0 ? kLimited : kFull)),
        fromRgb_(fromRgb(kBt709, object.limitedRange != 0 ? kLimited : kFull)) {}

  /// Number of bands: two per thread, up to bandCount, with at least four pairs of rows each, or one band.
  int count() const { return count_; }

  // Rows at the border of two ranges are computed twice, once for each.
  void operator()(const cv::Range& range) const override {
    const BandRows pairs = bandRows(range, (object_.height + 1) / 2, count_);
    const int firstRow = 2 * pairs.first, endRow = std::min(2 * pairs.end, object_.height);
    // The band's part of the frame buffers holds the few rows that are needed at a time.
    const auto width = static_cast<size_t>(object_.width), rowBytes = 4 * width;
    uint8_t* const converted = object_.rgbaIn.get() + rowBytes * static_cast<size_t>(firstRow);
    uint8_t* const mapped = object_.rgbaOut.get() + rowBytes * static_cast<size_t>(firstRow);
    const auto mappedRow = [&](int y) {
      return mapped + rowBytes * static_cast<size_t>(std::clamp(y, 0, object_.height - 1) % kRowsKept);
    };
    const auto writePair = [&](int y) {
      fromRgbKernels_.rowPair(fromRgb_, {mappedRow(y - 1), mappedRow(y), mappedRow(y + 1), mappedRow(y + 2)},
                              destinationRows(dst_, y), object_.width);
    };

    const int lastRow = std::min(endRow, object_.height - 1);
    for (int y = std::max(firstRow - 1, 0); y <= lastRow; ++y) {
      toRgbKernels_.row(toRgb_, sourceRow(src_, y), converted, object_.width);
      if (interpolates_) {
        mapKernels_.latticeRow(lut_, converted, mappedRow(y), width);
      } else {
        mapKernels_.cacheRow(cache_, converted, mappedRow(y), width);
      }
      if (y % 2 == 0 && y >= firstRow + 2) writePair(y - 2);
    }
    // No row follows the last pair of the frame to trigger writing it.
    if (endRow == object_.height) writePair((endRow - 1) / 2 * 2);
  }

 private:
  const VideoAdjustColor& object_;
  LatticeView lut_;
  const RGB8* cache_;
  bool interpolates_;
  Yv12Planes<const uint8_t> src_;
  Yv12Planes<uint8_t> dst_;
  ToRgb toRgb_;
  FromRgb fromRgb_;
  int count_ =
      std::clamp((object_.height + 1) / 2 / kMinPairsPerBand, 1, std::min(2 * poolThreads(), object_.bandCount));
  Yv12ToRgbKernels toRgbKernels_ = yv12ToRgbKernels();
  HdrKernels mapKernels_ = hdrKernels();
  Yv12FromRgbKernels fromRgbKernels_ = yv12FromRgbKernels();
};

HdrLatticeView viewOf(const VideoAdjustColor& object) {
  return {object.workLatticeSize, object.fraction, object.cell, object.lattice};
}

// The pass over a large frame that has been converted as a whole.
void mapLargeFrame(VideoAdjustColor& object, const HdrCache& cache) {
  const cv::Mat src(object.height, object.width, CV_8UC4, object.rgbaIn.get());
  cv::Mat dst(object.height, object.width, CV_8UC4, object.rgbaOut.get());
  runParallel(object.bandCount, parallelCubeLut_(dst, src, object.bandCount, viewOf(object), cache));
}

// Fills the object's tables, which may be empty or belong to another lattice size. False if there is no lattice.
bool useTablesOfFrame(VideoAdjustColor& object) {
  if (object.workLatticeSize < 1 || object.workLatticeSize > kLatticeStride) return false;
  fillInterpolationTables(object.workLatticeSize, object.fraction, object.cell);
  return true;
}

void mapSmallFrame(VideoAdjustColor& object, size_t pixels) {
  if (!useTablesOfFrame(object)) return;
  for (size_t i = 0; i < pixels; ++i) interpolatePixel(object, &object.rgbaIn[4 * i], &object.rgbaOut[4 * i]);
}

}  // namespace

bool adjustFrame(VideoAdjustColor& object, const uint8_t* srcPlane0, const uint8_t* srcPlane1, const uint8_t* srcPlane2,
                 int32_t stride0, int32_t stride1, int32_t stride2, uint8_t* dstPlane0, uint8_t* dstPlane1,
                 uint8_t* dstPlane2) {
  const int64_t pixels = int64_t{object.width} * object.height;
  if (pixels == 0) return true;
  const HdrTransferData& shared = hdrTransferData(object.usePq != 0);
  object.lattice = shared.lattice;
  object.workLatticeSize = shared.latticeSize;
  const bool large = pixels >= kMinPixelsOnThreads;
  const Yv12Planes<const uint8_t> src = {srcPlane0, stride0, srcPlane1,    stride1,
                                         srcPlane2, stride2, object.width, object.height};
  const Yv12Planes<uint8_t> dst = {dstPlane0, stride0, dstPlane1,    stride1,
                                   dstPlane2, stride2, object.width, object.height};
  if (large && !overlap(src, dst)) {
    useTablesOfFrame(object);
    const HdrBands bands(object, shared, src, dst, shared.ordinary && object.mappings.interpolates());
    const auto start = std::chrono::steady_clock::now();
    runParallel(bands.count(), bands);
    object.mappings.record(std::chrono::steady_clock::now() - start);
    return true;
  }

  // Stage by stage, so that overlapping planes are read completely before anything is written.
  const bool limited = object.limitedRange != 0;
  const auto convertIn = limited ? imageYV12ToRGBBT2020_Limited : imageYV12ToRGBBT2020_FULL;
  const auto convertOut = limited ? imageRGBAToYV12BT709_Limited : imageRGBAToYV12BT709_Full;
  convertIn(srcPlane0, stride0, srcPlane1, stride1, srcPlane2, stride2, object.rgbaIn.get(), object.width * 4,
            object.width, object.height);
  if (large) {
    mapLargeFrame(object, shared.cache);
  } else {
    mapSmallFrame(object, static_cast<size_t>(pixels));
  }
  convertOut(object.rgbaOut.get(), object.width * 4, dstPlane0, stride0, dstPlane1, stride1, dstPlane2, stride2,
             object.width, object.height);
  return true;
}

void interpolatePixel(const VideoAdjustColor& object, const uint8_t* srcPixel, uint8_t* dstPixel) {
  storeColour(hdrColour(viewOf(object), srcPixel[2], srcPixel[1], srcPixel[0]), dstPixel);
}

}  // namespace Lumvane
