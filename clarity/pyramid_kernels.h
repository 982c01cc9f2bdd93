// Kernels that resample rows between the levels of a pyramid: a filter of five taps, 1 4 6 4 1 over 16, in each
// direction, as in Burt and Adelson: "The Laplacian Pyramid as a Compact Image Code", IEEE Transactions on
// Communications 31, 1983. Beyond its edges a plane is reflected, without repeating the outermost samples.
//
// Single precision, each operation rounded immediately. The orders of addition in the plain forms, which differ from
// column to column, are those of cv::pyrDown and cv::pyrUp in an x86-64 build without fused multiply-add, and part of
// the library's contract.
#pragma once

#include <cstddef>

namespace Lumvane {

/// The row or sample that replaces number `at` of `count` beyond an edge: reflected, without repeating the outermost one.
inline int reflected(int at, int count) {
  while (at < 0 || at >= count) at = at < 0 ? -at : 2 * (count - 1) - at;
  return at;
}

/// A row of `width` samples, 2 or more, to (width + 1) / 2 sums of five taps, scaled by 16.
using DownAcross = void(const float* row, int width, float* sums);

/// Five rows of such sums, from top to bottom, to a row of the coarser level.
using DownAlong = void(const float* const (&sums)[5], int width, float* out);

/// A row of `width` samples to outWidth samples, 2 * width or one less, scaled by 8.
using UpAcross = void(const float* row, int width, float* out, int outWidth);

/// Rows of such samples to part of a row of the finer level: an even row, which lies at the middle one of three, or an
/// odd row, which lies between two. out must not be an input.
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

/// The fastest on this processor.
const PyramidKernels& pyramidKernels();

}  // namespace Lumvane
