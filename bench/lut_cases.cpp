// LUT grading against other programs' tetrahedral interpolation of the same file, and against itself.

#include "bench/cases.h"
#include "bench/effects.h"
#include "bench/frames.h"
#include "bench/lut_files.h"

namespace bench {
namespace {

struct Limits {
  std::optional<double> packed, planar, openColorIo;
};

void againstPeers(Report& report, const LutFile& file, const std::string& name, const Size& size, const Picture& src,
                  int threads, const Limits& limits) {
  Picture dst = src;
  const Side ours = frames(lutEffect(file.path(), size), src, dst, threads);
  const auto against = [&](const char* peer, std::optional<double> limit, const Report::MakePeer& make) {
    // Ours rounds up, and odd integers up by one.
    report.comparePeer({name + ": " + peer, threads, size.megapixels(), {Bar::timesAsFast, limit}}, ours, dst, make,
                       {1.0, 2});
  };
  const std::string chain = "lut3d=file='" + file.path().string() + "':interp=tetrahedral";
  against("FFmpeg bgra", limits.packed, [&] { return ffmpegFilters(chain, src, threads); });
  against("FFmpeg gbrpf32", limits.planar, [&] { return ffmpegFilters(chain, toFloatPlanes(src), threads); });
  if (threads == 1) against("OpenColorIO", limits.openColorIo, [&] { return openColorIo(file.path(), src); });
}

void againstItself(Report& report, const LutFile& file, const std::string& name, const Size& size,
                   const Picture& opaque, bool withBar) {
  const Picture translucentFrame = translucent(opaque);
  Picture dst = opaque;
  const Effect full = lutEffect(file.path(), size), half = lutEffect(file.path(), size, 50);
  const Side reference = frames(full, opaque, dst);
  const auto longer = [&](const char* what, std::optional<double> limit, const Side& side, const char* other) {
    report.compare({name + what, 1, size.megapixels(), {Bar::timesTheTime, limit}}, side, reference, other);
  };
  longer(" s50", onlyIf(withBar, 1.06), frames(half, opaque, dst), "strength 100");
  longer(" s100 translucent", onlyIf(withBar, 1.06), frames(full, translucentFrame, dst), "opaque");
  longer(" s50 translucent", onlyIf(withBar, 1.10), frames(half, translucentFrame, dst), "strength 100, opaque");
  report.compare({name + " s100 opaque", 2, size.megapixels(), {Bar::timesAsFast, onlyIf(withBar, 1.93)}},
                 frames(full, opaque, dst, 2), reference, "1 thread");
  report.compare({name + " s50 opaque", 2, size.megapixels(), {Bar::timesAsFast, onlyIf(withBar, 1.93)}},
                 frames(half, opaque, dst, 2), frames(half, opaque, dst), "1 thread");
}

}  // namespace

void lutCases(Report& report) {
  const LutFile file(33);
  for (const Size& size : {report.sized(k1080p), report.sized(k4K)}) {
    for (const bool photo : {true, false}) {
      const std::string name = "lut3d " + size.name + " 33^3 " + (photo ? "photo" : "noise");
      const Picture frame = photo ? photoLikeFrame(size) : noiseFrame(size);
      const bool hd = size.name == k1080p.name;
      const Limits limits = !hd ? Limits{} : photo ? Limits{7.0, 2.4, 9.0} : Limits{5.0, 2.3, 6.0};
      againstPeers(report, file, name + " s100 opaque", size, frame, 1, limits);
      againstPeers(report, file, name + " s100 opaque", size, frame, 2, {});
      againstItself(report, file, name, size, frame, hd && photo);
    }
  }
}

}  // namespace bench
