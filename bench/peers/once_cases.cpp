// What happens once: loading a LUT file, the first calls of a process, the memory that a frame takes.

#include <opencv2/core/utility.hpp>

#include "bench/lut_files.h"
#include "bench/peers/cases.h"
#include "bench/peers/child.h"
#include "bench/peers/peer.h"
#include "lumvane.h"

namespace bench {
namespace {

std::string openColorIoLoadName() {
  return "OpenColorIO " + openColorIoVersion() + ", file to CPU processor, nothing cached";
}

void firstFrame(Report& report, const LutFile& file, int threads) {
  const Case what = {"first lut3d 1080p frame of a process: a later one", threads, 0.0, {Bar::moreTime, 20.0}};
  if (!report.wants(what.name)) return;
  const bool smoke = report.settings.smoke;
  std::vector<double> first, later;
  for (int i = 0; i < report.settings.repeats; ++i) {
    const auto times = inChild(
        {"first frame", std::to_string(threads), file.path().string(), smoke ? "192" : "1920", smoke ? "108" : "1080"});
    first.push_back(times.at(0));
    later.push_back(times.at(1));
  }
  report.add(what, summary(first), summary(later), "a later one");
}

void firstHdrCreate(Report& report, const HdrLutFiles& files, int threads) {
  const auto limit = threads == 2 ? std::optional(0.5) : std::nullopt;
  const Case what = {
      "first hdr create of a process, two 65^3 files: OpenColorIO", threads, 0.0, {Bar::timesTheTime, limit}};
  if (!report.wants(what.name)) return;
  if (openColorIoVersion().empty()) return report.missing(what, "OpenColorIO is not installed");
  const std::string number = std::to_string(threads);
  std::vector<double> ours, theirs;
  for (int i = 0; i < report.settings.repeats; ++i) {
    ours.push_back(inChild({"first HDR create", number, files.folder().string()}).at(0));
    theirs.push_back(inChild({"OpenColorIO load", number, files.hlg().string()}).at(0));
  }
  report.add(what, summary(ours), summary(theirs), openColorIoLoadName() + ", one file");
}

}  // namespace

void loadCases(Report& report) {
  for (const int size : {33, 65}) {
    const auto limit = size == 65 ? std::optional(8.0) : std::nullopt;
    const std::string points = std::to_string(size);
    const Case what = {"load of a " + points + "^3 .cube: OpenColorIO", 1, 0.0, {Bar::timesAsFast, limit}};
    if (!report.wants(what.name)) continue;
    if (openColorIoVersion().empty()) {
      report.missing(what, "OpenColorIO is not installed");
      continue;
    }
    const LutFile file(size);
    const auto load = [path = file.path().u16string()] {
      Destory3DLutColorAdjustEffect(Create3DLutColorAdjustEffect(path.c_str(), 1920, 1080));
    };
    const auto theirs = [&] { openColorIoLoad(file.path()); };
    report.compare(what, {load}, {theirs, openColorIoForget, true}, openColorIoLoadName());
  }
}

void firstCallCases(Report& report) {
  const LutFile file(33);
  const HdrLutFiles hdr(report.settings.smoke ? 9 : 65);
  for (const int threads : {1, 2}) firstFrame(report, file, threads);
  for (const int threads : {1, 2}) firstHdrCreate(report, hdr, threads);
}

void memoryCases(Report& report) {
  if (!report.wants("memory of a frame")) return;
  struct Size {
    const char *name, *width, *height;
  };
  const HdrLutFiles files(report.settings.smoke ? 9 : 65);
  const bool smoke = report.settings.smoke;
  for (const Size& size : {Size{"1080p", "1920", "1080"}, Size{"8K", "7680", "4320"}}) {
    const auto peak = [&](const char* effect) {
      return inChild({"memory", "2", effect, smoke ? "192" : size.width, smoke ? "108" : size.height,
                      files.folder().string()})
          .at(0);
    };
    const double nothing = peak("nothing");
    for (const char* effect : {"LUT", "clarity", "white balance", "HDR"}) {
      report.memory(effect, size.name, peak(effect) - nothing);
    }
  }
}

}  // namespace bench
