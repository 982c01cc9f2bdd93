// Rows of planes that are resampled between the levels of a pyramid: a filter of five taps, 1 4 6 4 1 over 16, in each
// direction, as in Burt and Adelson: "The Laplacian Pyramid as a Compact Image Code", IEEE Transactions on Communications
// 31, 1983. Beyond its edges a plane is reflected, the outermost samples not repeated.
//
// Single precision, each operation rounded at once. The orders of addition in the plain forms, which differ from column to
// column, are those of cv::pyrDown and cv::pyrUp in an x86-64 build without fused multiply-add, and part of the library's
// contract.
#pragma once

#include <cstddef>

namespace Lumvane {

/// A row of `width` samples, 2 or more, to (width + 1) / 2 sums of five, 16 times the scale of the samples.
using DownAcross = void(const float* row, int width, float* sums);

/// Five rows of such sums, one above the other, to a row of the coarser level.
using DownAlong = void(const float* const (&sums)[5], int width, float* out);

/// A row of `width` samples to outWidth ones, 2 * width or one less, 8 times the scale of the samples.
using UpAcross = void(const float* row, int width, float* out, int outWidth);

/// Rows of such samples to a part of a row of the finer level: to an even one, which lies at the middle one of three, or
/// to an odd one, which lies between two. out may be none of them.
using UpAlongEven = void(const float* above, const float* at, const float* below, float* out, size_t samples);
using UpAlongOdd = void(const float* above, const float* below, float* out, size_t samples);

struct PyramidKernels {
  DownAcross* downAcross;
  DownAlong* downAlong;
  UpAcross* upAcross;
  UpAlongEven* upAlongEven;
  UpAlongOdd* upAlongOdd;
};

/// One sample at a time: what the others are held against.
extern const PyramidKernels plainPyramidKernels;

/// The fastest on this processor.
const PyramidKernels& pyramidKernels();

}  // namespace Lumvane
