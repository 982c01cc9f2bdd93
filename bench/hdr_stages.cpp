// Where the time of an HDR frame goes: both conversions and the mapping through the cache, on one 1080p frame and one
// thread. The cache holds noise, so that neighbouring colours do not share their place in it.

#include <opencv2/core.hpp>

#include "apply/hdr_kernels.h"
#include "bench/frames.h"
#include "hdr/yv12_conversions.h"

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

void mapping(benchmark::State& state) {
  const std::vector<uint8_t> src = bench::photoLikeFrame();
  std::vector<uint8_t> dst(src.size());
  std::vector<Lumvane::RGB8> cache(size_t{1} << 24);
  std::mt19937 random(2);
  for (Lumvane::RGB8& entry : cache) entry.component[0] = static_cast<uint8_t>(random());
  for (auto _ : state) Lumvane::hdrCacheRow(cache.data(), src.data(), dst.data(), kLumaBytes);
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
BENCHMARK(mapping)->Name("hdr/mapping")->Unit(benchmark::kMillisecond);
BENCHMARK(conversionOut)->Name("hdr/conversion out")->Unit(benchmark::kMillisecond);

}  // namespace
