// Times of LUT grading, through the exports of the shared object: frames and loading.

#include <opencv2/core/utility.hpp>
#include <stdexcept>

#include "bench/counters.h"
#include "bench/lut_files.h"
#include "lumvane.h"

namespace {

void* load(const bench::LutFile& file) {
  void* effect = Create3DLutColorAdjustEffect(file.path().u16string().c_str(), bench::kWidth, bench::kHeight);
  if (effect == nullptr) throw std::runtime_error("cannot load " + file.path().string());
  return effect;
}

void lutFrame(benchmark::State& state, bench::FrameKind kind) {
  const auto [width, height] = bench::sizeOfHeight(state.range(0));
  const int strength = static_cast<int>(state.range(1));
  cv::setNumThreads(static_cast<int>(state.range(2)));
  const bench::LutFile file(33);
  void* effect = load(file);
  const std::vector<uint8_t>& src = bench::frameOf(kind, width, height);
  std::vector<uint8_t> dst(src.size());
  for (auto _ : state) {
    Lut3DColorAdjustEffectProcess(effect, dst.data(), width, height, 0, src.data(), width, height, 0, strength);
  }
  Destory3DLutColorAdjustEffect(effect);
  bench::countPixels(state, width, height);
}

void lutLoad(benchmark::State& state) {
  const bench::LutFile file(static_cast<int>(state.range(0)));
  for (auto _ : state) Destory3DLutColorAdjustEffect(load(file));
}

void everyStrength(benchmark::internal::Benchmark* lut) {
  lut->ArgNames({"height", "strength", "threads"})
      ->ArgsProduct({{1080, 2160}, {100, 50}, {1, 2}})
      ->UseRealTime()
      ->Unit(benchmark::kMillisecond);
}

void everySize(benchmark::internal::Benchmark* lut) {
  everyStrength(lut);
  lut->ArgsProduct({{720, 4320}, {100}, {1, 2}});
}

BENCHMARK_CAPTURE(lutFrame, photo, bench::FrameKind::photo)->Name("lut/photo/opaque")->Apply(everySize);
BENCHMARK_CAPTURE(lutFrame, photoTranslucent, bench::FrameKind::photoTranslucent)
    ->Name("lut/photo/translucent")
    ->Apply(everyStrength);
BENCHMARK_CAPTURE(lutFrame, noise, bench::FrameKind::noise)->Name("lut/noise/opaque")->Apply(everyStrength);
BENCHMARK_CAPTURE(lutFrame, noiseTranslucent, bench::FrameKind::noiseTranslucent)
    ->Name("lut/noise/translucent")
    ->Apply(everyStrength);
BENCHMARK(lutLoad)->Name("lut/load")->ArgName("points")->Arg(33)->Arg(65)->Unit(benchmark::kMillisecond);

}  // namespace
