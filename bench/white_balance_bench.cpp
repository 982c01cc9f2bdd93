// Times of white balance, through the export of the shared object.

#include "bench/counters.h"
#include "lumvane.h"

namespace {

void whiteBalanceFrame(benchmark::State& state) {
  const std::vector<uint8_t> src = bench::photoLikeFrame();
  std::vector<uint8_t> dst(src.size());
  for (auto _ : state) {
    WhiteBalanceFun(src.data(), dst.data(), 0.0f, 0.0f, 0.0f, 0.2f, -0.05f, bench::kWidth, bench::kHeight);
  }
  bench::countPixels(state);
}

BENCHMARK(whiteBalanceFrame)->Name("whitebalance/1080p")->Unit(benchmark::kMillisecond);

}  // namespace
