// Times of LUT grading, through the exports of the shared object: 1080p frames, the first frame of the process,
// loading.

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <opencv2/core/utility.hpp>
#include <stdexcept>
#include <string>

#include "bench/frames.h"
#include "lumvane.h"

namespace {

using bench::kHeight;
using bench::kWidth;
using bench::photoLikeFrame;

// A LUT file of the given size with a plain contrast curve, gone at the end.
class LutFile {
 public:
  explicit LutFile(int size)
      : path_(std::filesystem::temp_directory_path() /
              ("lumvane_bench_" + std::to_string(getpid()) + "_" + std::to_string(size) + ".cube")) {
    std::ofstream out(path_);
    out << "LUT_3D_SIZE " << size << '\n';
    const auto value = [size](int i) {
      const double x = static_cast<double>(i) / (size - 1);
      return std::to_string(x * x * (3.0 - 2.0 * x));
    };
    for (int blue = 0; blue < size; ++blue) {
      for (int green = 0; green < size; ++green) {
        for (int red = 0; red < size; ++red) out << value(red) << ' ' << value(green) << ' ' << value(blue) << '\n';
      }
    }
  }
  ~LutFile() { std::filesystem::remove(path_); }
  void* load() const {
    void* effect = Create3DLutColorAdjustEffect(path_.u16string().c_str(), kWidth, kHeight);
    if (effect == nullptr) throw std::runtime_error("cannot load " + path_.string());
    return effect;
  }

 private:
  std::filesystem::path path_;
};

void lutFrame(benchmark::State& state) {
  const int strength = static_cast<int>(state.range(0));
  cv::setNumThreads(static_cast<int>(state.range(1)));
  const LutFile file(33);
  void* effect = file.load();
  const std::vector<uint8_t> src = photoLikeFrame();
  std::vector<uint8_t> dst(src.size());
  for (auto _ : state) {
    Lut3DColorAdjustEffectProcess(effect, dst.data(), kWidth, kHeight, 0, src.data(), kWidth, kHeight, 0, strength);
  }
  Destory3DLutColorAdjustEffect(effect);
  bench::countPixels(state);
}

void lutLoad(benchmark::State& state) {
  const LutFile file(static_cast<int>(state.range(0)));
  for (auto _ : state) Destory3DLutColorAdjustEffect(file.load());
}

// Once a process, ahead of everything else: this frame builds the blend table.
double millisecondsOfFirstFrame() {
  const LutFile file(33);
  void* effect = file.load();
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
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
