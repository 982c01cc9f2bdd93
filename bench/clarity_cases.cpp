// Clarity against its own plain form, and against FFmpeg's sharpening, which processes only luma at one small scale:
// less work for a similar purpose.

#include "bench/cases.h"
#include "bench/effects.h"
#include "bench/frames.h"
#include "clarity/nle_pure_c_clarity.h"

namespace bench {
namespace {

// The effect with the plain forms of its kernels, on one thread.
class PlainClarity : public Peer {
 public:
  explicit PlainClarity(const Picture& src) : src_(src), dst_(src), effect_(nullptr) {
    effect_.Init(src.width, src.height, 0, kSaturation, kIntensity);
  }
  void run() override {
    const cv::Mat from(src_.height, src_.width, CV_8UC4, src_.planes[0].data());
    cv::Mat to(dst_.height, dst_.width, CV_8UC4, dst_.planes[0].data());
    clarityPipeline(effect_, from, to, kSaturation, kIntensity,
                    {Lumvane::plainHsvKernels, Lumvane::plainDetailKernels, Lumvane::plainPyramidKernels});
  }
  Picture output() const override { return dst_; }
  std::string name() const override { return "plain form, same bytes"; }

 private:
  Picture src_, dst_;
  Lumvane::NLEPureCClarity effect_;
};

void againstUnsharp(Report& report, const Case& what, const Side& ours, const Picture& src) {
  if (!report.wants(what.name)) return;
  const Picture yuv = toYuv420(src);
  const auto peer = ffmpegFilters("unsharp=5:5:1:5:5:0", yuv, what.threads);
  if (!peer) return report.missing(what);
  peer->run();
  Picture chroma = yuv, theirChroma = peer->output();
  if (differenceOf(yuv, theirChroma).mean < 0.1) return report.refuse(peer->name() + ": leaves the luma unchanged");
  chroma.planes.erase(chroma.planes.begin());
  theirChroma.planes.erase(theirChroma.planes.begin());
  if (!report.agree(what, peer->name(), chroma, theirChroma, {})) return;
  report.compare(what, ours, frames([&] { peer->run(); }), peer->name());
}

void compareAtSize(Report& report, const Size& size, bool withBar) {
  const std::string name = "clarity " + size.name + " photo";
  const Picture src = photoLikeFrame(size);
  Picture dst = src;
  const Effect clarity = clarityEffect(size);
  report.comparePeer({name + ": plain form", 1, size.megapixels(), {Bar::timesAsFast, onlyIf(withBar, 6.0)}},
                     frames(clarity, src, dst), dst, [&] { return std::make_unique<PlainClarity>(src); }, {});
  for (const int threads : {1, 2}) {
    againstUnsharp(report,
                   {name + ": FFmpeg unsharp", threads, size.megapixels(), {Bar::timesAsFast, onlyIf(withBar, 2.0)}},
                   frames(clarity, src, dst, threads), src);
  }
  report.compare({name, 2, size.megapixels(), {Bar::timesAsFast, onlyIf(withBar, 1.93)}}, frames(clarity, src, dst, 2),
                 frames(clarity, src, dst), "1 thread");
}

}  // namespace

void clarityCases(Report& report) {
  compareAtSize(report, report.sized(k1080p), true);
  compareAtSize(report, report.sized(k4K), false);
}

}  // namespace bench
