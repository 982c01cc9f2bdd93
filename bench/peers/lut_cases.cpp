// LUT grading against others' tetrahedral interpolation of the same file, and against itself.

#include <opencv2/core/utility.hpp>
#include <stdexcept>

#include "bench/frames.h"
#include "bench/lut_files.h"
#include "bench/peers/cases.h"
#include "bench/peers/peer.h"
#include "lumvane.h"

namespace bench {
namespace {

/// LUT grading of one frame, with a destination of its own.
class Grading {
 public:
  Grading(const LutFile& file, Picture src)
      : effect_(Create3DLutColorAdjustEffect(file.path().u16string().c_str(), src.width, src.height)),
        src_(std::move(src)),
        dst_(src_) {
    if (effect_ == nullptr) throw std::runtime_error("cannot load " + file.path().string());
  }
  ~Grading() { Destory3DLutColorAdjustEffect(effect_); }
  Grading(const Grading&) = delete;
  Grading& operator=(const Grading&) = delete;

  void run(int strength = 100) {
    Lut3DColorAdjustEffectProcess(effect_, dst_.planes[0].data(), src_.width, src_.height, 0, src_.planes[0].data(),
                                  src_.width, src_.height, 0, strength);
  }
  Side side(int strength, int threads) {
    return frames([this, strength] { run(strength); }, threads);
  }
  const Picture& src() const { return src_; }
  const Picture& dst() const { return dst_; }
  double megapixels() const { return 1e-6 * src_.width * src_.height; }

 private:
  void* effect_;
  Picture src_, dst_;
};

void againstPeer(Report& report, const Case& what, Grading& ours, std::unique_ptr<Peer> peer, const char* library) {
  if (!peer) return report.missing(what, std::string(library) + " is not installed");
  cv::setNumThreads(what.threads);
  ours.run();
  peer->run();
  const Picture theirs = peer->output();
  // Ours rounds up, and to even bytes where the table has whole ones.
  const bool floats = theirs.format != "bgra";
  if (!report.agree(what, peer->name(), ours.dst(), floats ? fromFloatPlanes(theirs) : theirs, 1.0, 2)) return;
  report.compare(what, ours.side(100, what.threads), frames([&] { peer->run(); }), peer->name());
}

struct Limits {
  std::optional<double> packed, planar, openColorIo;
};

void againstPeers(Report& report, const LutFile& file, const std::string& name, Grading& ours, int threads,
                  const Limits& limits) {
  const std::string chain = "lut3d=file='" + file.path().string() + "':interp=tetrahedral";
  const auto with = [&](const char* peer, std::optional<double> limit) {
    return Case{name + ": " + peer, threads, ours.megapixels(), {Bar::timesAsFast, limit}};
  };
  const Case packed = with("FFmpeg bgra", limits.packed);
  if (report.wants(packed.name)) againstPeer(report, packed, ours, ffmpegFilters(chain, ours.src(), threads), "FFmpeg");
  const Case planar = with("FFmpeg gbrpf32", limits.planar);
  if (report.wants(planar.name)) {
    againstPeer(report, planar, ours, ffmpegFilters(chain, toFloatPlanes(ours.src()), threads), "FFmpeg");
  }
  const Case ocio = with("OpenColorIO", limits.openColorIo);
  if (threads == 1 && report.wants(ocio.name)) {
    againstPeer(report, ocio, ours, openColorIo(file.path(), ours.src()), "OpenColorIO");
  }
}

void againstItself(Report& report, const std::string& name, Grading& opaque, Grading& translucent, bool barred) {
  const auto limit = [barred](double value) { return barred ? std::optional(value) : std::nullopt; };
  const double megapixels = opaque.megapixels();
  report.compare({name + " s50", 1, megapixels, {Bar::timesTheTime, limit(1.15)}}, opaque.side(50, 1),
                 opaque.side(100, 1), "strength 100");
  report.compare({name + " s100 translucent", 1, megapixels, {Bar::timesTheTime, limit(1.15)}},
                 translucent.side(100, 1), opaque.side(100, 1), "opaque");
  report.compare({name + " s50 translucent", 1, megapixels, {Bar::timesTheTime, {}}}, translucent.side(50, 1),
                 opaque.side(100, 1), "strength 100, opaque");
  report.compare({name + " s100 opaque", 2, megapixels, {Bar::timesAsFast, limit(1.8)}}, opaque.side(100, 2),
                 opaque.side(100, 1), "1 thread");
  report.compare({name + " s50 opaque", 2, megapixels, {}}, opaque.side(50, 2), opaque.side(50, 1), "1 thread");
}

}  // namespace

void lutCases(Report& report) {
  const LutFile file(33);
  struct Size {
    const char* name;
    int width, height;
  };
  const bool smoke = report.settings.smoke;
  for (const Size size : {smoke ? Size{"1080p", 192, 108} : Size{"1080p", 1920, 1080},
                          smoke ? Size{"4K", 384, 216} : Size{"4K", 3840, 2160}}) {
    for (const bool photo : {true, false}) {
      const std::string name = std::string("lut3d ") + size.name + " 33^3 " + (photo ? "photo" : "noise");
      const auto pixels = photo ? photoLikeFrame(size.width, size.height) : noiseFrame(size.width, size.height);
      Grading opaque(file, {"bgra", size.width, size.height, {pixels}});
      Grading translucentOne(file, {"bgra", size.width, size.height, {translucent(pixels)}});
      const bool hd = std::string(size.name) == "1080p";
      const Limits limits = !hd ? Limits{} : photo ? Limits{7.0, 2.0, 9.0} : Limits{5.0, 1.3, 6.0};
      againstPeers(report, file, name + " s100 opaque", opaque, 1, limits);
      againstPeers(report, file, name + " s100 opaque", opaque, 2, {});
      againstItself(report, name, opaque, translucentOne, hd && photo);
    }
  }
}

}  // namespace bench
