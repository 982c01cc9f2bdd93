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
  cv::Mat planes[3];
  std::vector<cv::Mat> gaussian, detail;
  cv::Mat enhanced, blended;

  Frame() {
    cv::setNumThreads(1);
    for (cv::Mat& plane : planes) plane = cv::Mat::zeros(src.size(), CV_32FC1);
    analysis();
    pyramid();
    details();
    collapse();
    blend();
  }
  void analysis() { run(clarityAnalysisPass{src.rows, kStripes, src, planes, 1.03f}); }
  void pyramid() {
    gaussian = {planes[2]};
    for (int i = 1; i < kLevels; ++i) gaussian.push_back(pyramidDown(gaussian.back()));
  }
  // With the resampling of each level that its details are taken against.
  void details() {
    detail.assign(kLevels, gaussian.back());
    for (int i = 0; i + 1 < kLevels; ++i) {
      const cv::Mat up = pyramidUp(gaussian[i + 1], gaussian[i].size());
      detail[i] = cv::Mat(up.size(), up.type());
      run(clarityDetailPass{up.rows, kStripes, gaussian[i], up, detail[i], 22.222221f, 0.55f});
    }
  }
  void collapse() { enhanced = collapseClarityPyramid(gaussian, detail); }
  void blend() {
    cv::addWeighted(planes[2], 0.3, enhanced, 0.7, 0.0, blended, -1);
    for (cv::Mat* plane : {&enhanced, &blended}) {
      cv::min(*plane, 1.0, *plane);
      cv::max(*plane, 0.0, *plane);
    }
  }
  void synthesis() { run(claritySynthesisPass{dst.rows, kStripes, planes, dst, src}); }

  template <class Pass>
  static void run(const Pass& pass) {
    cv::parallel_for_(cv::Range(0, kStripes), pass, 1.0);
  }
};

void stage(benchmark::State& state, void (Frame::*step)()) {
  Frame frame;
  for (auto _ : state) (frame.*step)();
}

BENCHMARK_CAPTURE(stage, analysis, &Frame::analysis)->Name("clarity/analysis")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(stage, pyramid, &Frame::pyramid)->Name("clarity/pyramid")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(stage, detail, &Frame::details)->Name("clarity/detail")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(stage, collapse, &Frame::collapse)->Name("clarity/collapse")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(stage, blend, &Frame::blend)->Name("clarity/blend")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(stage, synthesis, &Frame::synthesis)->Name("clarity/synthesis")->Unit(benchmark::kMillisecond);

}  // namespace
