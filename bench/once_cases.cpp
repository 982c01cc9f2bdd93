// One-time costs: loading a LUT file, the first calls of a process, the memory of a frame.

#include "bench/cases.h"
#include "bench/child.h"
#include "bench/effects.h"
#include "bench/lut_files.h"

namespace bench {
namespace {

std::string openColorIoLoadName() {
  return "OpenColorIO " + openColorIoVersion() + ", file to CPU processor, nothing cached";
}

void firstFrame(Report& report, const LutFile& file, int threads) {
  const Case what = {"first lut3d 1080p frame of a process: a later one", threads, 0.0, {Bar::moreTime, 5.0}};
  if (!report.wants(what.name)) return;
  std::vector<double> first, later;
  for (int i = 0; i < report.settings.repeats; ++i) {
    const auto times = inChild("first frame", threads, file.path(), report.sized(k1080p));
    first.push_back(times.at(0));
    later.push_back(times.at(1));
  }
  report.add(what, summary(first), summary(later), "a later one");
}

void firstHdrCreate(Report& report, const HdrLutFiles& files, int threads) {
  const Case what = {"first hdr create of a process, two 65^3 files: OpenColorIO",
                     threads,
                     0.0,
                     {Bar::timesTheTime, onlyIf(threads == 2, 0.25)}};
  if (!report.wants(what.name)) return;
  if (openColorIoVersion().empty()) return report.missing(what);
  std::vector<double> ours, theirs;
  for (int i = 0; i < report.settings.repeats; ++i) {
    ours.push_back(inChild("first HDR create", threads, files.folder(), k1080p).at(0));
    theirs.push_back(inChild("OpenColorIO load", threads, files.hlg(), k1080p).at(0));
  }
  report.add(what, summary(ours), summary(theirs), openColorIoLoadName() + ", one file");
}

}  // namespace

void loadCases(Report& report) {
  for (const int points : {33, 65}) {
    const Case what = {"load of a " + std::to_string(points) + "^3 .cube: OpenColorIO",
                       1,
                       0.0,
                       {Bar::timesAsFast, onlyIf(points == 65, 8.0)}};
    if (!report.wants(what.name)) continue;
    if (openColorIoVersion().empty()) {
      report.missing(what);
      continue;
    }
    const LutFile file(points);
    report.compare(what, {[&] { lutEffect(file.path(), k1080p); }},
                   {[&] { openColorIoLoad(file.path()); }, openColorIoClearCache, true}, openColorIoLoadName());
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
  const HdrLutFiles files(report.settings.smoke ? 9 : 65);
  for (const Size& size : {report.sized(k1080p), report.sized(k8K)}) {
    const auto peak = [&](const char* effect) { return inChild("memory", 2, files.folder(), size, effect).at(0); };
    const double nothing = peak("nothing");
    for (const char* effect : {"LUT", "clarity", "white balance", "HDR"}) {
      report.memory(effect, size.name, peak(effect) - nothing);
    }
  }
}

}  // namespace bench
