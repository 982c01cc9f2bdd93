// What happens to the pixels of one row. Kernels know colour and nothing of frames or threads.
//
// Hue, saturation and value as in Smith: "Color Gamut Transform Pairs", SIGGRAPH 1978: the value is the largest of the
// three colours, the saturation the distance from the smallest to it as a part of it, the hue the place on a hexagon.
// Single precision throughout except where it says otherwise, each operation rounded at once, in the order in which it
// stands: the bits are part of the library's contract, on every processor.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Lumvane {

/// BGRA pixels to their value from 0 to 1: the largest of the three colours.
void valueRow(const uint8_t* src, float* value, size_t pixels);

/// BGRA pixels to hue in degrees from 0 to 360, saturation times saturationFactor held to 0 to 1, and value from 0
/// to 1. Where colours tie for the largest, red goes before green before blue.
void analysisRow(const uint8_t* src, float saturationFactor, float* hue, float* saturation, float* value,
                 size_t pixels);

/// Adds to base what samples differ from their surroundings, raised: with d = fine - coarse that is (d * gain) * w + d,
/// where the weight w = exp(-(d * d * coefficient)), rounded correctly, falls from 1 for small differences to nearly 0
/// for strong edges. fine and coarse lie from 0 to 1 or hardly beyond. out may be one of the inputs.
void detailRow(const float* fine, const float* coarse, float coefficient, float gain, const float* base, float* out,
               size_t samples);

/// Values from 0 to 1 mixed with enhanced ones, which are held to 0 to 1 before. Worked out in double precision,
/// value * valueWeight + enhanced * enhancedWeight, and then rounded. The weights make 1 together. out may be value.
void blendRow(const float* value, float valueWeight, const float* enhanced, float enhancedWeight, float* out,
              size_t samples);

/// Hue from 0 to 360, saturation and value from 0 to 1 back to the bytes 0, 1 and 2 of BGRA pixels, rounded; byte 3
/// comes from src. dst may be src.
void synthesisRow(const float* hue, const float* saturation, const float* value, const uint8_t* src, uint8_t* dst,
                  size_t pixels);

/// The same, one sample at a time: what defines the bits and what the vector forms are held against.
namespace plain {

void valueRow(const uint8_t* src, float* value, size_t pixels);
void analysisRow(const uint8_t* src, float saturationFactor, float* hue, float* saturation, float* value,
                 size_t pixels);
void detailRow(const float* fine, const float* coarse, float coefficient, float gain, const float* base, float* out,
               size_t samples);
void blendRow(const float* value, float valueWeight, const float* enhanced, float enhancedWeight, float* out,
              size_t samples);
void synthesisRow(const float* hue, const float* saturation, const float* value, const uint8_t* src, uint8_t* dst,
                  size_t pixels);

}  // namespace plain
}  // namespace Lumvane
