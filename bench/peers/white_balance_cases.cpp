// White balance against a copy of the frame, which nothing that writes a frame can beat, and FFmpeg's gains.

#include <cstring>

#include "bench/frames.h"
#include "bench/peers/cases.h"
#include "bench/peers/peer.h"
#include "lumvane.h"

namespace bench {
namespace {

constexpr float kTemperature = 0.2f;
constexpr float kTint = -0.05f;
// The gains of these two, as numbers that FFmpeg reads: 1 + tint / 2 + temperature, and so on.
constexpr const char* kGains = "colorchannelmixer=rr=1.175:gg=1.05:bb=0.775";

void ofSize(Report& report, const std::string& size, int width, int height, bool barred) {
  const Picture src = {"bgra", width, height, {photoLikeFrame(width, height)}};
  Picture dst = src;
  const double megapixels = 1e-6 * width * height;
  const auto limit = [barred](double value) { return barred ? std::optional(value) : std::nullopt; };
  const auto balance = [&] {
    WhiteBalanceFun(src.planes[0].data(), dst.planes[0].data(), 0, 0, 0, kTemperature, kTint, width, height);
  };
  const std::string name = "white balance " + size + " photo";

  Picture copy = src;
  report.compare({name + ": memcpy", 1, megapixels, {Bar::timesAsFast, limit(0.7)}}, frames(balance),
                 frames([&] { std::memcpy(copy.planes[0].data(), src.planes[0].data(), src.planes[0].size()); }),
                 "memcpy of the frame");

  const Case mixer = {name + ": FFmpeg gains", 1, megapixels, {Bar::timesAsFast, limit(10.0)}};
  if (!report.wants(mixer.name)) return;
  const auto peer = ffmpegFilters(kGains, src, 1);
  if (!peer) return report.missing(mixer, "FFmpeg is not installed");
  balance();
  peer->run();
  // Ours truncates, FFmpeg rounds.
  if (!report.agree(mixer, peer->name(), dst, peer->output(), 0.6, 1)) return;
  report.compare(mixer, frames(balance), frames([&] { peer->run(); }), peer->name());
}

}  // namespace

void whiteBalanceCases(Report& report) {
  const int part = report.settings.smoke ? 10 : 1;
  ofSize(report, "1080p", 1920 / part, 1080 / part, false);
  ofSize(report, "4K", 3840 / part, 2160 / part, true);
}

}  // namespace bench
