// Rows of a plane whose details are raised. Single precision, each operation rounded at once, except in BlendRow, which
// uses double precision.
#pragma once

#include <cstddef>

namespace Lumvane {

/// Adds to base the raised difference between samples and their surroundings: with d = fine - coarse, (d * gain) * w + d,
/// where the weight w = exp(-(d * d * coefficient)), rounded correctly, falls from 1 for small differences to nearly 0
/// for strong edges. fine and coarse lie from 0 to 1 or hardly beyond. out may be one of the inputs.
using DetailRow = void(const float* fine, const float* coarse, float coefficient, float gain, const float* base,
                       float* out, size_t samples);

/// Values from 0 to 1 mixed with enhanced ones, which are held to 0 to 1 before. Worked out in double precision,
/// value * valueWeight + enhanced * enhancedWeight, and then rounded. The weights add up to 1. out may be value.
using BlendRow = void(const float* value, float valueWeight, const float* enhanced, float enhancedWeight, float* out,
                      size_t samples);

struct DetailKernels {
  DetailRow* detail;
  BlendRow* blend;
};

/// One sample at a time: what the others are held against.
extern const DetailKernels plainDetailKernels;

/// The fastest on this processor.
const DetailKernels& detailKernels();

}  // namespace Lumvane
