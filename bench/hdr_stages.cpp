// Where the time of an HDR frame goes: both conversions and the mapping through the cache, on one 1080p frame and one
// thread. The cache holds noise, so that neighbouring colours do not share their place in it.

#include <opencv2/core.hpp>

#include "apply/hdr_cache.h"
#include "apply/hdr_kernels.h"
#include "bench/counters.h"
#include "bench/frames.h"
#include "hdr/yv12_conversions.h"
#include "lut/interpolation_tables.h"

namespace {

using bench::kHeight;
using bench::kWidth;

constexpr size_t kLumaBytes = size_t{kWidth} * kHeight;

void conversionIn(benchmark::State& state) {
  const std::vector<uint8_t> src = bench::photoLikeFrame();
  std::vector<uint8_t> rgba(4 * kLumaBytes);
  for (auto _ : state) {
    imageYV12ToRGBBT2020_Limited(src.data(), kWidth, &src[kLumaBytes], kWidth / 2, &src[kLumaBytes + kLumaBytes / 4],
                                 kWidth / 2, rgba.data(), kWidth * 4, kWidth, kHeight);
  }
}

// Colours of a photo lie close together, those of noise all over the cache: the worst there is.
template <bool noise>
void mapping(benchmark::State& state) {
  std::vector<uint8_t> src = bench::photoLikeFrame();
  std::vector<uint8_t> dst(src.size());
  std::mt19937 random(2);
  if (noise) {
    for (uint8_t& byte : src) byte = static_cast<uint8_t>(random());
  }
  Lumvane::HdrCache cache(Lumvane::kCacheEntries);
  for (Lumvane::RGB8& entry : cache) entry.component[0] = static_cast<uint8_t>(random());
  for (auto _ : state) Lumvane::hdrCacheRow(cache.data(), src.data(), dst.data(), kLumaBytes);
}

// One cache of two, on one thread, into memory that is in place already.
void cacheFill(benchmark::State& state) {
  constexpr int32_t kPoints = 65;
  std::vector<float> points(size_t{kPoints} * kPoints * kPoints * 3);
  for (size_t i = 0; i < points.size(); ++i) points[i] = static_cast<float>(i % 256);
  std::vector<float*> rows(kPoints * kPoints);
  for (size_t i = 0; i < rows.size(); ++i) rows[i] = &points[i * kPoints * 3];
  std::vector<float**> planes(kPoints);
  for (size_t i = 0; i < planes.size(); ++i) planes[i] = &rows[i * kPoints];
  float fraction[256];
  int32_t cell[256];
  Lumvane::fillInterpolationTables(kPoints, fraction, cell);
  Lumvane::HdrCache cache(Lumvane::kCacheEntries);
  for (auto _ : state) {
    for (int r = 0; r < 256; ++r) {
      const auto red = static_cast<uint8_t>(r);
      Lumvane::hdrCacheFill({kPoints, fraction, cell, planes.data()}, red, &cache[Lumvane::cacheEntry(red, 0, 0)]);
    }
  }
}

void conversionOut(benchmark::State& state) {
  const std::vector<uint8_t> rgba = bench::photoLikeFrame();
  std::vector<uint8_t> dst(2 * kLumaBytes);
  for (auto _ : state) {
    imageRGBAToYV12BT709_Limited(rgba.data(), kWidth * 4, dst.data(), kWidth, &dst[kLumaBytes], kWidth / 2,
                                 &dst[kLumaBytes + kLumaBytes / 4], kWidth / 2, kWidth, kHeight);
  }
}

BENCHMARK(conversionIn)->Name("hdr/conversion in")->Unit(benchmark::kMillisecond);
BENCHMARK(mapping<false>)->Name("hdr/mapping")->Unit(benchmark::kMillisecond);
BENCHMARK(mapping<true>)->Name("hdr/mapping of noise")->Unit(benchmark::kMillisecond);
BENCHMARK(conversionOut)->Name("hdr/conversion out")->Unit(benchmark::kMillisecond);
BENCHMARK(cacheFill)->Name("hdr/cache fill")->Unit(benchmark::kMillisecond);

}  // namespace
