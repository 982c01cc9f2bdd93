// Times of LUT grading, through the exports of the shared object: 1080p frames, the first frame of the process,
// loading.

#include <chrono>
#include <cstdio>
#include <opencv2/core/utility.hpp>
#include <stdexcept>

#include "bench/counters.h"
#include "bench/hdr_bench.h"
#include "bench/lut_files.h"
#include "lumvane.h"

namespace {

using bench::kHeight;
using bench::kWidth;
using bench::photoLikeFrame;

void* load(const bench::LutFile& file) {
  void* effect = Create3DLutColorAdjustEffect(file.path().u16string().c_str(), kWidth, kHeight);
  if (effect == nullptr) throw std::runtime_error("cannot load " + file.path().string());
  return effect;
}

void lutFrame(benchmark::State& state) {
  const int strength = static_cast<int>(state.range(0));
  cv::setNumThreads(static_cast<int>(state.range(1)));
  const bench::LutFile file(33);
  void* effect = load(file);
  const std::vector<uint8_t> src = photoLikeFrame();
  std::vector<uint8_t> dst(src.size());
  for (auto _ : state) {
    Lut3DColorAdjustEffectProcess(effect, dst.data(), kWidth, kHeight, 0, src.data(), kWidth, kHeight, 0, strength);
  }
  Destory3DLutColorAdjustEffect(effect);
  bench::countPixels(state);
}

void lutLoad(benchmark::State& state) {
  const bench::LutFile file(static_cast<int>(state.range(0)));
  for (auto _ : state) Destory3DLutColorAdjustEffect(load(file));
}

// Once a process, ahead of everything else: this frame builds the blend table.
double millisecondsOfFirstFrame() {
  const bench::LutFile file(33);
  void* effect = load(file);
  const std::vector<uint8_t> src = photoLikeFrame();
  std::vector<uint8_t> dst(src.size());
  const auto start = std::chrono::steady_clock::now();
  Lut3DColorAdjustEffectProcess(effect, dst.data(), kWidth, kHeight, 0, src.data(), kWidth, kHeight, 0, 100);
  const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
  Destory3DLutColorAdjustEffect(effect);
  return time.count();
}

BENCHMARK(lutFrame)
    ->Name("lut/1080p/33")
    ->ArgNames({"strength", "threads"})
    ->ArgsProduct({{100, 50}, {1, 2}})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(lutLoad)->Name("lut/load")->ArgName("points")->Arg(33)->Arg(65)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  std::printf("first 1080p frame of the process, strength 100: %.1f ms\n", millisecondsOfFirstFrame());
  std::printf("first HDR create of the process, two files of 65 points: %.1f ms\n",
              bench::millisecondsOfFirstHdrCreate());
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
