// Kernels that convert rows between BGRA and hue, saturation and value. As in Smith: "Color Gamut Transform Pairs",
// SIGGRAPH 1978, the value is the largest of the three colours, the saturation is (largest - smallest) / largest, and
// the hue is the position on a hexagon. Single precision throughout, each operation rounded immediately, in the
// order in which it is written: the bits are part of the library's contract, on every processor.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Lumvane {

/// Converts BGRA pixels to their value from 0 to 1: the largest of the three colours.
using ValueRow = void(const uint8_t* src, float* value, size_t pixels);

/// Converts BGRA pixels to hue in degrees from 0 to 360, saturation times saturationFactor clamped to 0 to 1, and value
/// from 0 to 1. Where colours tie for the largest, red precedes green and green precedes blue.
using AnalysisRow = void(const uint8_t* src, float saturationFactor, float* hue, float* saturation, float* value,
                         size_t pixels);

/// Converts hue from 0 to 360, saturation and value from 0 to 1 to bytes 0, 1 and 2 of BGRA pixels, rounded; byte 3 is
/// copied from src. dst may be src.
using SynthesisRow = void(const float* hue, const float* saturation, const float* value, const uint8_t* src,
                          uint8_t* dst, size_t pixels);

struct HsvKernels {
  ValueRow* value;
  AnalysisRow* analysis;
  SynthesisRow* synthesis;
};

/// The plain forms, one pixel at a time: the reference for all others.
extern const HsvKernels plainHsvKernels;

/// Returns the fastest kernels for this processor.
HsvKernels hsvKernels();

}  // namespace Lumvane
