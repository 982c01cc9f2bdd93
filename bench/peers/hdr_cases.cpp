// HDR to BT.709 against FFmpeg's chain for the same: up to RGB in floats, through the same LUT file, and down again.

#include <opencv2/core/utility.hpp>

#include "bench/frames.h"
#include "bench/lut_files.h"
#include "bench/peers/cases.h"
#include "bench/peers/peer.h"
#include "lumvane.h"

namespace bench {
namespace {

/// One frame of limited range with an HLG transfer.
class Conversion {
 public:
  Conversion(const HdrLutFiles& luts, Picture src)
      : effect_(CreateVideoAdjustColor(luts.folder().u16string().c_str(), 0, 1, 0, src.width, src.height)),
        src_(std::move(src)),
        dst_(src_) {}
  ~Conversion() { DestroyVideoAdjustColor(effect_); }
  Conversion(const Conversion&) = delete;
  Conversion& operator=(const Conversion&) = delete;

  void run() {
    // Pictures have their planes in the order Y, Cb, Cr, YV12 in the order Y, Cr, Cb.
    const auto& from = src_.planes;
    auto& to = dst_.planes;
    const int chroma = (src_.width + 1) / 2;
    VideoAdjustColorProcess(effect_, from[0].data(), from[2].data(), from[1].data(), src_.width, chroma, chroma, 0, 0,
                            to[0].data(), to[2].data(), to[1].data());
  }
  const Picture& src() const { return src_; }
  const Picture& dst() const { return dst_; }

 private:
  void* effect_;
  Picture src_, dst_;
};

void againstChain(Report& report, const Case& what, const HdrLutFiles& luts, Conversion& ours) {
  if (!report.wants(what.name)) return;
  const std::string chain =
      "zscale=matrixin=2020_ncl:rangein=limited:matrix=gbr:range=full,format=gbrpf32le,lut3d=file='" +
      luts.hlg().string() +
      "':interp=tetrahedral,zscale=matrixin=gbr:rangein=full:matrix=709:range=limited,format=yuv420p";
  const auto peer = ffmpegFilters(chain, ours.src(), what.threads);
  if (!peer) return report.missing(what, "FFmpeg with zscale is not installed");
  ours.run();
  peer->run();
  // Ours rounds to bytes on the way.
  if (!report.agree(what, peer->name(), ours.dst(), peer->output(), 0.5, 2)) return;
  report.compare(what, frames([&] { ours.run(); }, what.threads), frames([&] { peer->run(); }), peer->name());
}

void ofSize(Report& report, const HdrLutFiles& luts, const std::string& size, int width, int height, bool barred) {
  const std::string name = "hdr " + size + " photo HLG limited range";
  const double megapixels = 1e-6 * width * height;
  Conversion ours(luts, toYuv420({"bgra", width, height, {photoLikeFrame(width, height)}}));
  const auto limit = barred ? std::optional(4.0) : std::nullopt;
  for (const int threads : {1, 2}) {
    againstChain(report, {name + ": FFmpeg chain", threads, megapixels, {Bar::timesAsFast, limit}}, luts, ours);
  }
  const auto run = [&] { ours.run(); };
  report.compare({name, 2, megapixels, {}}, frames(run, 2), frames(run, 1), "1 thread");
}

}  // namespace

void hdrCases(Report& report) {
  const int part = report.settings.smoke ? 10 : 1;
  const HdrLutFiles luts(report.settings.smoke ? 9 : 65);
  ofSize(report, luts, "1080p", 1920 / part, 1080 / part, true);
  ofSize(report, luts, "4K", 3840 / part, 2160 / part, false);
}

}  // namespace bench
