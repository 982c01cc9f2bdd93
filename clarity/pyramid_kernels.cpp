// Row kernels of the pyramid: the plain forms, which define the bits, and the vector forms.

#include "clarity/pyramid_kernels.h"

#ifndef HWY_TARGET_INCLUDE  // once; the code after this block is compiled for each instruction set
#define HWY_TARGET_INCLUDE "clarity/pyramid_kernels.cpp"

#include <algorithm>

namespace Lumvane {
namespace plain {
namespace {

struct Taps {
  float a, b, c, d, e;
};

// Where cv::pyrDown uses vectors of four, its order of addition differs.
float sumInVectors(const Taps& t) { return t.c * 6 + ((t.b + t.d) * 4 + (t.a + t.e)); }
float sum(const Taps& t) { return ((t.c * 6 + (t.b + t.d) * 4) + t.a) + t.e; }

// Returns the first column after those in vectors, which begin at column 1.
int endOfVectors(int width) {
  const int inside = std::min((width - 3) / 2 + 1, (width + 1) / 2);
  return 1 + (inside - 1) / 4 * 4;
}

float sumOfColumn(const float* row, int width, int x) {
  const auto at = [&](int offset) { return row[reflected(2 * x + offset, width)]; };
  const Taps taps = {at(-2), at(-1), at(0), at(1), at(2)};
  return x >= 1 && x < endOfVectors(width) ? sumInVectors(taps) : sum(taps);
}

float downAlongColumn(const float* const (&sums)[5], int width, int x) {
  const float a = sums[0][x], b = sums[1][x], c = sums[2][x], d = sums[3][x], e = sums[4][x];
  const float all = x < width / 4 * 4 ? ((b + d) + c) * 4 + ((a + e) + (c + c)) : sum({a, b, c, d, e});
  return all * (1.0f / 256);
}

// Computes samples 2 * x and 2 * x + 1 of the finer row.
void upAcrossPair(const float* row, int width, int x, float* out, int outWidth) {
  const bool first = x == 0, last = x == width - 1;
  float even, odd;
  if (first && last) {
    even = odd = row[0] * 8;
  } else {
    even = first ? row[0] * 6 + row[1] * 2 : last ? row[x - 1] + row[x] * 7 : (row[x - 1] + row[x] * 6) + row[x + 1];
    odd = last ? row[x] * 8 : (row[x] + row[x + 1]) * 4;
  }
  out[2 * x] = even;
  if (2 * x + 1 < outWidth) out[2 * x + 1] = odd;
}

}  // namespace

void downAcross(const float* row, int width, float* sums) {
  for (int x = 0; x < (width + 1) / 2; ++x) sums[x] = sumOfColumn(row, width, x);
}

void downAlong(const float* const (&sums)[5], int width, float* out) {
  for (int x = 0; x < width; ++x) out[x] = downAlongColumn(sums, width, x);
}

void upAcross(const float* row, int width, float* out, int outWidth) {
  for (int x = 0; x < width; ++x) upAcrossPair(row, width, x, out, outWidth);
}

void upAlongEven(const float* above, const float* at, const float* below, float* out, size_t samples) {
  for (size_t x = 0; x < samples; ++x) out[x] = ((above[x] + at[x] * 6) + below[x]) * (1.0f / 64);
}

void upAlongOdd(const float* above, const float* below, float* out, size_t samples) {
  for (size_t x = 0; x < samples; ++x) out[x] = (above[x] + below[x]) * (1.0f / 16);
}

}  // namespace plain

const PyramidKernels plainPyramidKernels = {plain::downAcross, plain::downAlong, plain::upAcross, plain::upAlongEven,
                                            plain::upAlongOdd};

}  // namespace Lumvane

#endif

#include <hwy/foreach_target.h>  // must precede all vector code

#include "base/vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace Lumvane {
namespace HWY_NAMESPACE {
namespace {

#if LUMVANE_HAVE_VECTORS

HWY_INLINE VF times(VF v, float factor) { return hn::Mul(v, hn::Set(F(), factor)); }

void downAcross(const float* row, int width, float* sums) {
  const int end = plain::endOfVectors(width), columns = (width + 1) / 2;
  sums[0] = plain::sumOfColumn(row, width, 0);
  int x = 1;
  constexpr int lanes = kLanes;
  for (; x + lanes <= end; x += lanes) {
    VF a, b, c, d, e;
    hn::LoadInterleaved2(F(), row + 2 * x - 2, a, b);
    hn::LoadInterleaved2(F(), row + 2 * x + 1, d, e);
    hn::LoadInterleaved2(F(), row + 2 * x, c, d);
    hn::StoreU(hn::Add(times(c, 6), hn::Add(times(hn::Add(b, d), 4), hn::Add(a, e))), F(), sums + x);
  }
  for (; x < columns; ++x) sums[x] = plain::sumOfColumn(row, width, x);
}

void downAlong(const float* const (&sums)[5], int width, float* out) {
  int x = 0;
  constexpr int lanes = kLanes;
  for (; x + lanes <= width; x += lanes) {
    VF taps[5];
    for (int i = 0; i < 5; ++i) taps[i] = hn::LoadU(F(), sums[i] + x);
    const auto& [a, b, c, d, e] = taps;
    const VF all = hn::Add(times(hn::Add(hn::Add(b, d), c), 4), hn::Add(hn::Add(a, e), hn::Add(c, c)));
    hn::StoreU(times(all, 1.0f / 256), F(), out + x);
  }
  for (; x < width; ++x) out[x] = plain::downAlongColumn(sums, width, x);
}

void upAcross(const float* row, int width, float* out, int outWidth) {
  plain::upAcrossPair(row, width, 0, out, outWidth);
  int x = 1;
  constexpr int lanes = kLanes;
  for (; x + lanes < width; x += lanes) {
    const VF before = hn::LoadU(F(), row + x - 1), at = hn::LoadU(F(), row + x), after = hn::LoadU(F(), row + x + 1);
    const VF even = hn::Add(hn::Add(before, times(at, 6)), after);
    hn::StoreInterleaved2(even, times(hn::Add(at, after), 4), F(), out + 2 * x);
  }
  for (; x < width; ++x) plain::upAcrossPair(row, width, x, out, outWidth);
}

void upAlongEven(const float* above, const float* at, const float* below, float* out, size_t samples) {
  size_t x = 0;
  for (; x + kLanes <= samples; x += kLanes) {
    const VF middle = times(hn::LoadU(F(), at + x), 6);
    const VF all = hn::Add(hn::Add(hn::LoadU(F(), above + x), middle), hn::LoadU(F(), below + x));
    hn::StoreU(times(all, 1.0f / 64), F(), out + x);
  }
  plain::upAlongEven(above + x, at + x, below + x, out + x, samples - x);
}

void upAlongOdd(const float* above, const float* below, float* out, size_t samples) {
  size_t x = 0;
  for (; x + kLanes <= samples; x += kLanes) {
    const VF both = hn::Add(hn::LoadU(F(), above + x), hn::LoadU(F(), below + x));
    hn::StoreU(times(both, 1.0f / 16), F(), out + x);
  }
  plain::upAlongOdd(above + x, below + x, out + x, samples - x);
}

#else
using namespace plain;
#endif

PyramidKernels kernels() { return {downAcross, downAlong, upAcross, upAlongEven, upAlongOdd}; }

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace Lumvane
HWY_AFTER_NAMESPACE();

LUMVANE_DISPATCH(PyramidKernels, pyramidKernels)
