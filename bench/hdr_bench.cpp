// Times of HDR to BT.709, through the exports of the shared object.

#include <opencv2/core/utility.hpp>

#include "bench/counters.h"
#include "bench/lut_files.h"
#include "lumvane.h"

namespace {

// The first object of the process loads the files; the later ones take any directory.
void* create(int width, int height) {
  static const bench::HdrLutFiles luts(65);
  return CreateVideoAdjustColor(luts.folder().u16string().c_str(), 0, 1, 0, width, height);
}

void hdrFrame(benchmark::State& state) {
  const auto [width, height] = bench::sizeOfHeight(state.range(0));
  cv::setNumThreads(static_cast<int>(state.range(1)));
  void* effect = create(width, height);
  const std::vector<uint8_t>& src = bench::frameOf(bench::FrameKind::photo, width, height);
  std::vector<uint8_t> dst(src.size());
  // The planes lie in the first bytes of frames that are larger.
  const size_t v = size_t{1} * width * height, u = v + v / 4;
  for (auto _ : state) {
    VideoAdjustColorProcess(effect, &src[0], &src[v], &src[u], width, width / 2, width / 2, 0, 0, &dst[0], &dst[v],
                            &dst[u]);
  }
  DestroyVideoAdjustColor(effect);
  bench::countPixels(state, width, height);
}

BENCHMARK(hdrFrame)->Name("hdr")->Apply(bench::everySizeAndThreads);

}  // namespace
