// The four whole-frame conversions between YV12 planes and BGRA pixels at both ends of the HDR path. Large frames whose
// planes do not overlap are instead converted in bands by the same row kernels: see adjustFrame.
//
// Planes of 8 bits: first Y, width x height, then V (Cr), then U (Cb), each (width + 1) / 2 x (height + 1) / 2. Pixels:
// byte 0 blue, byte 1 green, byte 2 red, byte 3 set to 255 when converting in and ignored when converting out; BGRA
// rows are rgbaStride bytes apart. Strides are in bytes. Sizes of 0 or less read and write nothing.
#pragma once

#include <cstdint>

extern "C" {

/// BT.2020 non-constant luminance, limited range (Y from 16 to 235, chroma from 16 to 240) or full range, to R'G'B'
/// from 0 to 255. Values out of range are clamped.
void imageYV12ToRGBBT2020_Limited(const uint8_t* srcY, int strideY, const uint8_t* srcV, int strideV,
                                  const uint8_t* srcU, int strideU, uint8_t* rgba, int rgbaStride, int width,
                                  int height);
void imageYV12ToRGBBT2020_FULL(const uint8_t* srcY, int strideY, const uint8_t* srcV, int strideV, const uint8_t* srcU,
                               int strideU, uint8_t* rgba, int rgbaStride, int width, int height);

/// R'G'B' from 0 to 255 to BT.709, limited range or full range.
void imageRGBAToYV12BT709_Limited(const uint8_t* rgba, int rgbaStride, uint8_t* dstY, int strideY, uint8_t* dstV,
                                  int strideV, uint8_t* dstU, int strideU, int width, int height);
void imageRGBAToYV12BT709_Full(const uint8_t* rgba, int rgbaStride, uint8_t* dstY, int strideY, uint8_t* dstV,
                               int strideV, uint8_t* dstU, int strideU, int width, int height);
}
