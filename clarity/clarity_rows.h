// What happens to the pixels of one row. Kernels know colour and nothing of frames or threads.
//
// Hue, saturation and value as in Smith: "Color Gamut Transform Pairs", SIGGRAPH 1978: the value is the largest of the
// three colours, the saturation the distance from the smallest to it as a part of it, the hue the place on a hexagon.
// Single precision throughout, each operation rounded at once, in the order in which it stands: the bits are part of
// the library's contract.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Lumvane::plain {

/// BGRA pixels to hue in degrees from 0 to 360, saturation times saturationFactor held to 0 to 1, and value from 0
/// to 1. Where colours tie for the largest, red goes before green before blue.
void analysisRow(const uint8_t* src, float saturationFactor, float* hue, float* saturation, float* value,
                 size_t pixels);

/// Raises what a sample differs from its surroundings: with d = fine - coarse, out = (d * gain) * w + d, where the
/// weight w = exp(-(d * d * coefficient)) falls from 1 for small differences to nearly 0 for strong edges.
void detailRow(const float* fine, const float* coarse, float coefficient, float gain, float* out, size_t samples);

/// Hue, saturation and value back to the bytes 0, 1 and 2 of BGRA pixels, rounded; byte 3 comes from src. dst may be
/// src.
void synthesisRow(const float* hue, const float* saturation, const float* value, const uint8_t* src, uint8_t* dst,
                  size_t pixels);

}  // namespace Lumvane::plain
