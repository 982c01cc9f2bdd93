#include "hdr/hdr_frame.h"

#include <opencv2/core.hpp>

#include "apply/hdr_kernels.h"
#include "apply/parallel_hdr_lut.h"
#include "base/parallel.h"
#include "hdr/hdr_bands.h"
#include "hdr/hdr_shared.h"
#include "hdr/yv12_conversions.h"
#include "hdr/yv12_planes.h"
#include "lut/interpolation_tables.h"

namespace Lumvane {
namespace {

constexpr int64_t kFewestPixelsOnThreads = 10000;

void mapLargeFrame(VideoAdjustColor& object, const HdrCache& cache) {
  const cv::Mat src(object.height, object.width, CV_8UC4, object.rgbaIn.get());
  cv::Mat dst(object.height, object.width, CV_8UC4, object.rgbaOut.get());
  parallelCubeLut_ map;
  map.dst = &dst;
  map.src = &src;
  map.bands = object.bandCount;
  map.latticeSize = object.workLatticeSize;
  map.fraction = object.fraction;
  map.cell = object.cell;
  map.lattice = object.lattice;
  map.cache = &cache;
  runParallel(map.bands, map);
}

void mapSmallFrame(VideoAdjustColor& object, size_t pixels) {
  if (object.workLatticeSize < 1 || object.workLatticeSize > kLatticeStride) return;
  // What the object's tables hold is of the file that it read last, if it read any.
  fillInterpolationTables(object.workLatticeSize, object.fraction, object.cell);
  for (size_t i = 0; i < pixels; ++i) interpolatePixel(object, &object.rgbaIn[4 * i], &object.rgbaOut[4 * i]);
}

}  // namespace

bool adjustFrame(VideoAdjustColor& object, const uint8_t* srcPlane0, const uint8_t* srcPlane1, const uint8_t* srcPlane2,
                 int32_t stride0, int32_t stride1, int32_t stride2, uint8_t* dstPlane0, uint8_t* dstPlane1,
                 uint8_t* dstPlane2) {
  const int64_t pixels = int64_t{object.width} * object.height;
  if (pixels == 0) return true;
  const HdrTransferData shared = hdrTransferData(object.usePq != 0);
  object.lattice = shared.lattice;
  object.workLatticeSize = shared.latticeSize;
  const bool large = pixels >= kFewestPixelsOnThreads;
  const Yv12Planes<const uint8_t> src = {srcPlane0, stride0, srcPlane1,    stride1,
                                         srcPlane2, stride2, object.width, object.height};
  const Yv12Planes<uint8_t> dst = {dstPlane0, stride0, dstPlane1,    stride1,
                                   dstPlane2, stride2, object.width, object.height};
  if (large && !overlap(src, dst)) {
    const HdrBands bands(object, shared.cache.data(), src, dst);
    runParallel(bands.count(), bands);
    return true;
  }

  // Stage by stage: what overlaps is read before anything is written.
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
  const HdrLatticeView view = {object.workLatticeSize, object.fraction, object.cell, object.lattice};
  const RGB8 colour = plain::hdrColour(view, srcPixel[2], srcPixel[1], srcPixel[0]);
  dstPixel[0] = colour.component[2];
  dstPixel[1] = colour.component[1];
  dstPixel[2] = colour.component[0];
}

}  // namespace Lumvane
