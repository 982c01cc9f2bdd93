// Times of HDR to BT.709, through the exports of the shared object.

#include "bench/hdr_bench.h"

#include <chrono>
#include <opencv2/core/utility.hpp>

#include "bench/counters.h"
#include "bench/lut_files.h"
#include "lumvane.h"

namespace bench {
namespace {

constexpr int kChromaWidth = kWidth / 2;
constexpr size_t kLumaBytes = size_t{kWidth} * kHeight;

void hdrFrame(benchmark::State& state) {
  cv::setNumThreads(static_cast<int>(state.range(0)));
  void* effect = CreateVideoAdjustColor(u"loaded already", 0, 1, 0, kWidth, kHeight);
  const std::vector<uint8_t> src = photoLikeFrame();  // more than the bytes of three planes
  std::vector<uint8_t> dst(src.size());
  const auto plane = [](auto* frame, int number) {
    return frame + kLumaBytes * (number > 0) + kLumaBytes / 4 * (number > 1);
  };
  for (auto _ : state) {
    VideoAdjustColorProcess(effect, plane(src.data(), 0), plane(src.data(), 1), plane(src.data(), 2), kWidth,
                            kChromaWidth, kChromaWidth, 0, 0, plane(dst.data(), 0), plane(dst.data(), 1),
                            plane(dst.data(), 2));
  }
  DestroyVideoAdjustColor(effect);
  countPixels(state);
}

BENCHMARK(hdrFrame)
    ->Name("hdr/1080p")
    ->ArgName("threads")
    ->Arg(1)
    ->Arg(2)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace

double millisecondsOfFirstHdrCreate() {
  const LutFile hlg(65, "HDR_HLG.cube");
  const std::filesystem::path folder = hlg.path().parent_path();
  std::filesystem::copy_file(hlg.path(), folder / "HDR_PQ.cube");
  const auto start = std::chrono::steady_clock::now();
  void* effect = CreateVideoAdjustColor(folder.u16string().c_str(), 0, 1, 0, kWidth, kHeight);
  const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
  DestroyVideoAdjustColor(effect);
  return time.count();
}

}  // namespace bench
