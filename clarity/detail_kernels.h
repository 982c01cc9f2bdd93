// Kernels that raise the details of a row. Single precision, each operation rounded immediately, except in BlendRow,
// which uses double precision.
#pragma once

#include <cstddef>

namespace Lumvane {

/// Adds the raised differences between samples and their surroundings to base: (d * gain) * w + d, d = fine - coarse.
/// The weight w = exp(-(d * d * coefficient)), correctly rounded, falls from 1 for small differences to nearly 0 for
/// strong edges. fine and coarse are from 0 to 1, or slightly out of range. out may be one of the inputs.
using DetailRow = void(const float* fine, const float* coarse, float coefficient, float gain, const float* base,
                       float* out, size_t samples);

/// Blends values from 0 to 1 with enhanced ones, which are clamped to 0 to 1 first: value * valueWeight + enhanced *
/// enhancedWeight in double precision, then rounded. The weights add up to 1. out may be value.
using BlendRow = void(const float* value, float valueWeight, const float* enhanced, float enhancedWeight, float* out,
                      size_t samples);

struct DetailKernels {
  DetailRow* detail;
  BlendRow* blend;
};

/// The plain forms, one sample at a time: the reference for all others.
extern const DetailKernels plainDetailKernels;

/// Returns the fastest kernels for this processor.
DetailKernels detailKernels();

}  // namespace Lumvane
