// Kernels that resample rows between the levels of a pyramid: a filter of five taps, 1 4 6 4 1 over 16, in each
// direction, as in Burt and Adelson: "The Laplacian Pyramid as a Compact Image Code", IEEE Transactions on
// Communications 31, 1983. Beyond its edges a plane is mirrored without repeating the outermost samples.
//
// Single precision, each operation rounded immediately. The orders of addition in the plain forms, which depend on the
// column, are those of cv::pyrDown and cv::pyrUp in an x86-64 build without fused multiply-add, and part of the
// library's contract.
#pragma once

#include <cstddef>

namespace Lumvane {

/// Mirrors the index `at` of a row or sample at the edges, without repeating the outermost one, into 0 to count - 1.
inline int reflected(int at, int count) {
  while (at < 0 || at >= count) at = at < 0 ? -at : 2 * (count - 1) - at;
  return at;
}

/// Reduces a row of `width` samples, 2 or more, to (width + 1) / 2 sums of five taps, scaled by 16.
using DownAcross = void(const float* row, int width, float* sums);

/// Combines five rows of such sums, from top to bottom, to a row of the coarser level.
using DownAlong = void(const float* const (&sums)[5], int width, float* out);

/// Expands a row of `width` samples to outWidth samples, 2 * width or one less, scaled by 8.
using UpAcross = void(const float* row, int width, float* out, int outWidth);

/// Combine rows of such samples to part of a row of the finer level: an even row from the three rows around it, or an
/// odd row from the two that it is between. out must not be an input.
using UpAlongEven = void(const float* above, const float* at, const float* below, float* out, size_t samples);
using UpAlongOdd = void(const float* above, const float* below, float* out, size_t samples);

struct PyramidKernels {
  DownAcross* downAcross;
  DownAlong* downAlong;
  UpAcross* upAcross;
  UpAlongEven* upAlongEven;
  UpAlongOdd* upAlongOdd;
};

/// The plain forms, one sample at a time: the reference for all others.
extern const PyramidKernels plainPyramidKernels;

/// Returns the fastest kernels for this processor.
PyramidKernels pyramidKernels();

}  // namespace Lumvane
