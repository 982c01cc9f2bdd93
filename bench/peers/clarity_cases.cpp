// Clarity against its own plain form, and against FFmpeg's sharpening of the luma alone at one small scale, which is
// less work for a similar purpose.

#include <opencv2/core/utility.hpp>

#include "bench/frames.h"
#include "bench/peers/cases.h"
#include "bench/peers/peer.h"
#include "bench/peers/plain_clarity.h"
#include "lumvane.h"

namespace bench {
namespace {

constexpr int kSaturation = 20;
constexpr int kIntensity = 70;
constexpr const char* kUnsharp = "unsharp=5:5:1:5:5:0";

void againstUnsharp(Report& report, const Case& what, const Picture& src, const std::function<void()>& clarity) {
  if (!report.wants(what.name)) return;
  const Picture yuv = toYuv420(src);
  const auto peer = ffmpegFilters(kUnsharp, yuv, what.threads);
  if (!peer) return report.missing(what, "FFmpeg is not installed");
  peer->run();
  Picture chroma = yuv, theirChroma = peer->output();
  if (differenceOf(yuv, theirChroma).mean < 0.1) return report.refuse(peer->name() + ": leaves the luma as it is");
  chroma.planes.erase(chroma.planes.begin());
  theirChroma.planes.erase(theirChroma.planes.begin());
  if (!report.agree(what, peer->name(), chroma, theirChroma, 0.0, 0)) return;
  report.compare(what, frames(clarity, what.threads), frames([&] { peer->run(); }), peer->name());
}

void ofSize(Report& report, const std::string& size, int width, int height, bool barred) {
  const Picture src = {"bgra", width, height, {photoLikeFrame(width, height)}};
  Picture dst = src, plainDst = src;
  void* effect = CreateNLEPureCClarity(width, height, 0, kSaturation, kIntensity);
  const auto clarity = [&] {
    NLEPureCClarityProcess(effect, dst.planes[0].data(), width, height, 0, src.planes[0].data(), 0, 0, 0);
  };
  const auto plain = [&] {
    plainClarity(src.planes[0].data(), plainDst.planes[0].data(), width, height, kSaturation, kIntensity);
  };
  const double megapixels = 1e-6 * width * height;
  const auto limit = [barred](double value) { return barred ? std::optional(value) : std::nullopt; };
  const std::string name = "clarity " + size + " photo";

  const Case whole = {name + ": plain form", 1, megapixels, {Bar::timesAsFast, limit(6.0)}};
  if (report.wants(whole.name)) {
    clarity();
    plain();
    if (report.agree(whole, "plain form", dst, plainDst, 0.0, 0)) {
      report.compare(whole, frames(clarity), frames(plain), "plain form, same bytes");
    }
  }
  for (const int threads : {1, 2}) {
    againstUnsharp(report, {name + ": FFmpeg unsharp", threads, megapixels, {Bar::timesAsFast, limit(1.0)}}, src,
                   clarity);
  }
  report.compare({name, 2, megapixels, {}}, frames(clarity, 2), frames(clarity, 1), "1 thread");
  DestoryNLEPureCClarity(effect);
}

}  // namespace

void clarityCases(Report& report) {
  const int part = report.settings.smoke ? 10 : 1;
  ofSize(report, "1080p", 1920 / part, 1080 / part, true);
  ofSize(report, "4K", 3840 / part, 2160 / part, false);
}

}  // namespace bench
