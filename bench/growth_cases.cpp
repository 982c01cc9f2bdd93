// How the time of each effect scales with the frame size, on one thread and on two.

#include "bench/cases.h"
#include "bench/effects.h"
#include "bench/frames.h"
#include "bench/lut_files.h"

namespace bench {
namespace {

void measureEffect(Report& report, const std::string& name, const std::function<Effect(const Size&)>& make,
                   bool yuv = false) {
  for (const Size& size : {report.sized(k720p), report.sized(k1080p), report.sized(k4K), report.sized(k8K)}) {
    if (!report.wants("growth of " + name + ", " + size.name)) continue;
    const Effect effect = make(size);
    const Picture photo = photoLikeFrame(size);
    const Picture src = yuv ? toYuv420(photo) : photo;
    Picture dst = src;
    const auto [one, two] = timePair(frames(effect, src, dst, 1), frames(effect, src, dst, 2), report.settings.repeats,
                                     report.settings.blockMs);
    report.growth(name, 1, size, one);
    report.growth(name, 2, size, two);
  }
}

}  // namespace

void growthCases(Report& report) {
  const LutFile file(33);
  const HdrLutFiles luts(report.settings.smoke ? 9 : 65);
  measureEffect(report, "LUT of 33 points", [&](const Size& size) { return lutEffect(file.path(), size); });
  measureEffect(report, "clarity", clarityEffect);
  measureEffect(report, "white balance", whiteBalanceEffect);
  measureEffect(
      report, "HDR to BT.709", [&](const Size& size) { return hdrEffect(luts.folder(), size); }, true);
}

}  // namespace bench
