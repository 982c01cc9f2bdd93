// Times of clarity, through the exports of the shared object.

#include <opencv2/core/utility.hpp>

#include "bench/counters.h"
#include "lumvane.h"

namespace {

void clarityFrame(benchmark::State& state) {
  const auto [width, height] = bench::sizeOfHeight(state.range(0));
  cv::setNumThreads(static_cast<int>(state.range(1)));
  void* effect = CreateNLEPureCClarity(width, height, 0, 20, 70);
  const std::vector<uint8_t>& src = bench::frameOf(bench::FrameKind::photo, width, height);
  std::vector<uint8_t> dst(src.size());
  for (auto _ : state) NLEPureCClarityProcess(effect, dst.data(), width, height, 0, src.data(), 0, 0, 0);
  DestoryNLEPureCClarity(effect);
  bench::countPixels(state, width, height);
}

BENCHMARK(clarityFrame)->Name("clarity")->Apply(bench::everySizeAndThreads);

}  // namespace
