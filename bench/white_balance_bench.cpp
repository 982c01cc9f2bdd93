// Times of white balance, through the export of the shared object.

#include <opencv2/core/utility.hpp>

#include "bench/counters.h"
#include "lumvane.h"

namespace {

void whiteBalanceFrame(benchmark::State& state) {
  const auto [width, height] = bench::sizeOfHeight(state.range(0));
  cv::setNumThreads(static_cast<int>(state.range(1)));
  const std::vector<uint8_t>& src = bench::frameOf(bench::FrameKind::photo, width, height);
  std::vector<uint8_t> dst(src.size());
  for (auto _ : state) {
    WhiteBalanceFun(src.data(), dst.data(), 0.0f, 0.0f, 0.0f, 0.2f, -0.05f, width, height);
  }
  bench::countPixels(state, width, height);
}

BENCHMARK(whiteBalanceFrame)->Name("whitebalance")->Apply(bench::everySizeAndThreads);

}  // namespace
