// Times of clarity, through the exports of the shared object.

#include <opencv2/core/utility.hpp>

#include "bench/counters.h"
#include "lumvane.h"

namespace {

void clarityFrame(benchmark::State& state) {
  cv::setNumThreads(static_cast<int>(state.range(0)));
  void* effect = CreateNLEPureCClarity(bench::kWidth, bench::kHeight, 0, 20, 70);
  const std::vector<uint8_t> src = bench::photoLikeFrame();
  std::vector<uint8_t> dst(src.size());
  for (auto _ : state) {
    NLEPureCClarityProcess(effect, dst.data(), bench::kWidth, bench::kHeight, 0, src.data(), 0, 0, 0);
  }
  DestoryNLEPureCClarity(effect);
  bench::countPixels(state);
}

BENCHMARK(clarityFrame)
    ->Name("clarity/1080p")
    ->ArgName("threads")
    ->Arg(1)
    ->Arg(2)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
