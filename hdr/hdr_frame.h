#pragma once

#include <cstdint>

#include "hdr/video_adjust_color.h"

namespace Lumvane {

/// Converts one frame of the object's size from the source planes to the destination planes: see
/// VideoAdjustColorProcess. Always returns true.
bool adjustFrame(VideoAdjustColor& object, const uint8_t* srcPlane0, const uint8_t* srcPlane1, const uint8_t* srcPlane2,
                 int32_t stride0, int32_t stride1, int32_t stride2, uint8_t* dstPlane0, uint8_t* dstPlane1,
                 uint8_t* dstPlane2);

/// Maps bytes 0 to 2 of a pixel through the lattice of the current frame; byte 3 of dstPixel is unchanged.
void interpolatePixel(const VideoAdjustColor& object, const uint8_t* srcPixel, uint8_t* dstPixel);

}  // namespace Lumvane
