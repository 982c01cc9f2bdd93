// Where the time of a clarity frame goes: each stage of the pipeline by itself, on one 1080p frame and one thread.

#include <opencv2/core.hpp>

#include "bench/counters.h"
#include "clarity/clarity_passes.h"
#include "clarity/clarity_pyramid.h"

namespace {

using namespace Lumvane;

constexpr int kStripes = 2;
constexpr int kLevels = 8;

// Everything that the stages hand on to one another.
struct Frame {
  std::vector<uint8_t> pixels = bench::photoLikeFrame();
  cv::Mat src = cv::Mat(bench::kHeight, bench::kWidth, CV_8UC4, pixels.data());
  cv::Mat dst = cv::Mat(bench::kHeight, bench::kWidth, CV_8UC4);
  cv::Mat value = cv::Mat::zeros(bench::kHeight, bench::kWidth, CV_32FC1);
  ClarityPyramid pyramid;

  Frame() {
    cv::setNumThreads(1);
    pyramid.bands.resize(kStripes);
    analysis();
    build();
    collapse();
  }
  void analysis() { run(clarityAnalysisPass{src.rows, kStripes, src, value}); }
  void build() { buildClarityPyramid(value, kLevels, pyramid); }
  // Everything but the finest level's details, which the synthesis adds.
  void collapse() { collapseClarityPyramid(pyramid); }
  void synthesis() { run(claritySynthesisPass{dst.rows, kStripes, value, dst, src, 1.03f, pyramid, 0.7f}); }
  void encoding() { run(claritySynthesisPass{dst.rows, kStripes, value, dst, src, 1.03f, pyramid, 0.0f}); }
  // OpenCV's share of the frame.
  void resampling() {
    build();
    for (int i = 0; i + 1 < kLevels; ++i) {
      for (auto* planes : {&pyramid.coarse, &pyramid.rebuilt}) {
        pyramidUp(pyramid.gaussian[i + 1], pyramid.gaussian[i].size(), (*planes)[i]);
      }
    }
  }

  template <class Pass>
  static void run(const Pass& pass) {
    cv::parallel_for_(cv::Range(0, kStripes), pass, 1.0);
  }
};

void stage(benchmark::State& state, void (Frame::*step)()) {
  Frame frame;
  for (auto _ : state) {
    state.PauseTiming();
    frame.analysis();  // the synthesis changes the value plane
    state.ResumeTiming();
    (frame.*step)();
  }
}

BENCHMARK_CAPTURE(stage, analysis, &Frame::analysis)->Name("clarity/analysis")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(stage, build, &Frame::build)->Name("clarity/build")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(stage, collapse, &Frame::collapse)->Name("clarity/collapse")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(stage, synthesis, &Frame::synthesis)->Name("clarity/synthesis")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(stage, encoding, &Frame::encoding)->Name("clarity/encoding")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(stage, resampling, &Frame::resampling)->Name("clarity/resampling")->Unit(benchmark::kMillisecond);

}  // namespace
