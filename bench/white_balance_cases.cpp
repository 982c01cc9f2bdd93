// White balance against a copy of the frame, which nothing that writes a frame can beat, and against FFmpeg's gains.

#include <cstring>

#include "bench/cases.h"
#include "bench/effects.h"
#include "bench/frames.h"

namespace bench {
namespace {

// The gains of the effect's temperature and tint, as text for FFmpeg: 1 + tint / 2 + temperature, and so on.
constexpr const char* kGains = "colorchannelmixer=rr=1.175:gg=1.05:bb=0.775";

void compareAtSize(Report& report, const Size& size, bool withBar) {
  const std::string name = "white balance " + size.name + " photo";
  const Picture src = photoLikeFrame(size);
  Picture dst = src, copy = src;
  const Side ours = frames(whiteBalanceEffect(size), src, dst);
  report.compare({name + ": memcpy", 1, size.megapixels(), {Bar::timesAsFast, onlyIf(withBar, 0.7)}}, ours,
                 frames([&] { std::memcpy(copy.planes[0].data(), src.planes[0].data(), src.planes[0].size()); }),
                 "memcpy of the frame");
  // Ours truncates, FFmpeg rounds.
  report.comparePeer({name + ": FFmpeg gains", 1, size.megapixels(), {Bar::timesAsFast, onlyIf(withBar, 10.0)}}, ours,
                     dst, [&] { return ffmpegFilters(kGains, src, 1); }, {0.6, 1});
}

}  // namespace

void whiteBalanceCases(Report& report) {
  compareAtSize(report, report.sized(k1080p), false);
  compareAtSize(report, report.sized(k4K), true);
}

}  // namespace bench
