// HDR to BT.709 against FFmpeg's equivalent chain: to float RGB, through the same LUT file, and back.

#include "bench/cases.h"
#include "bench/effects.h"
#include "bench/frames.h"
#include "bench/lut_files.h"

namespace bench {
namespace {

void compareAtSize(Report& report, const HdrLutFiles& luts, const Size& size, bool withBar) {
  const std::string name = "hdr " + size.name + " photo HLG limited range";
  const std::string chain =
      "zscale=matrixin=2020_ncl:rangein=limited:matrix=gbr:range=full,format=gbrpf32le,lut3d=file='" +
      luts.hlg().string() +
      "':interp=tetrahedral,zscale=matrixin=gbr:rangein=full:matrix=709:range=limited,format=yuv420p";
  const Picture src = toYuv420(photoLikeFrame(size));
  Picture dst = src;
  const Effect hdr = hdrEffect(luts.folder(), size);
  for (const int threads : {1, 2}) {
    // Ours rounds to bytes in between.
    report.comparePeer({name + ": FFmpeg chain", threads, size.megapixels(), {Bar::timesAsFast, onlyIf(withBar, 5.0)}},
                       frames(hdr, src, dst, threads), dst, [&] { return ffmpegFilters(chain, src, threads); },
                       {0.5, 2});
  }
  report.compare({name, 2, size.megapixels(), {Bar::timesAsFast, onlyIf(withBar, 1.93)}}, frames(hdr, src, dst, 2),
                 frames(hdr, src, dst), "1 thread");
}

}  // namespace

void hdrCases(Report& report) {
  const HdrLutFiles luts(report.settings.smoke ? 9 : 65);
  compareAtSize(report, luts, report.sized(k1080p), true);
  compareAtSize(report, luts, report.sized(k4K), false);
}

}  // namespace bench
