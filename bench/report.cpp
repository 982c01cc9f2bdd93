#include "bench/report.h"

#include <fnmatch.h>

#include <cstdio>
#include <stdexcept>

namespace bench {
namespace {

double valueOf(Bar::Kind kind, double ours, double other) {
  if (kind == Bar::moreTime) return ours - other;
  return kind == Bar::timesAsFast ? other / ours : ours / other;
}

std::string number(double value, const char* format = "%.4g") {
  char text[64];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

std::string titleOf(const Case& what) {
  return what.name + ", " + std::to_string(what.threads) + (what.threads == 1 ? " thread" : " threads");
}

std::string milliseconds(const Timing& timing) {
  return number(timing.milliseconds, "%8.2f") + " ms (+/- " + number(timing.spread, "%.2f") + ")";
}

}  // namespace

Report::Report(const Settings& given, const std::string& file) : settings(given) {
  if (file.empty()) return;
  file_.open(file);
  if (!file_) throw std::runtime_error("cannot write '" + file + "'");
}

bool Report::wants(const std::string& name) const {
  return fnmatch(("*" + settings.only + "*").c_str(), name.c_str(), 0) == 0;
}

Size Report::sized(const Size& size) const {
  return settings.smoke ? Size{size.name, size.width / 10, size.height / 10} : size;
}

void Report::fact(const std::string& name, const std::string& value) {
  std::printf("%s: %s\n", name.c_str(), value.c_str());
  file_ << "fact\t" << name << '\t' << value << '\n';
}

void Report::compare(const Case& what, const Side& ours, const Side& other, const std::string& otherName) {
  if (!wants(what.name)) return;
  const PairTiming timing = timePair(ours, other, settings.repeats, settings.blockMs);
  add(what, timing.ours, timing.other, otherName);
}

void Report::comparePeer(const Case& what, const Side& ours, const Picture& dst, const MakePeer& make,
                         const Difference& tolerance) {
  if (!wants(what.name)) return;
  const std::unique_ptr<Peer> peer = make();
  if (!peer) return missing(what);
  ours.run();
  peer->run();
  const Picture theirs = peer->output();
  const bool floats = theirs.format == "gbrpf32le";
  if (!agree(what, peer->name(), dst, floats ? fromFloatPlanes(theirs) : theirs, tolerance)) return;
  compare(what, ours, frames([&] { peer->run(); }), peer->name());
}

void Report::add(const Case& what, const Timing& ours, const Timing& other, const std::string& otherName) {
  static constexpr const char* kUnits[] = {"x as fast", "x the time", "ms more"};
  static constexpr const char* kKeys[] = {"fast", "time", "more"};
  const auto [kind, limit] = what.bar;
  const double value = valueOf(kind, ours.milliseconds, other.milliseconds);
  const std::string speed = what.megapixels > 0.0 ? number(1e3 * what.megapixels / ours.milliseconds, "%.1f") : "";
  std::string bar, met;
  if (limit && !settings.smoke) {
    bar = number(*limit);
    met = (kind == Bar::timesAsFast ? value >= *limit : value <= *limit) ? "met" : "missed";
  }
  std::printf("%-70s %s%s  peer %s  %6.2f %s%s  (%s)\n", titleOf(what).c_str(), milliseconds(ours).c_str(),
              speed.empty() ? "" : (" " + speed + " Mpx/s").c_str(), milliseconds(other).c_str(), value, kUnits[kind],
              !met.empty() ? (", bar " + bar + " " + met).c_str() : "", otherName.c_str());
  std::fflush(stdout);
  file_ << "case\t" << what.name << '\t' << what.threads << '\t' << number(ours.milliseconds) << '\t'
        << number(ours.spread, "%.2g") << '\t' << speed << '\t' << otherName << '\t' << number(other.milliseconds)
        << '\t' << number(other.spread, "%.2g") << '\t' << kKeys[kind] << '\t' << number(value) << '\t' << bar << '\t'
        << met << '\n';
  file_.flush();
}

void Report::growth(const std::string& effect, int threads, const Size& size, const Timing& timing) {
  std::printf("%-70s %s\n", titleOf({effect + ", one " + size.name + " frame", threads}).c_str(),
              milliseconds(timing).c_str());
  std::fflush(stdout);
  file_ << "growth\t" << effect << '\t' << threads << '\t' << size.name << '\t' << number(timing.milliseconds) << '\t'
        << number(timing.spread, "%.2g") << '\n';
}

void Report::memory(const std::string& effect, const std::string& size, double megabytes) {
  std::printf("memory of %s, one %s frame: %.1f MB\n", effect.c_str(), size.c_str(), megabytes);
  file_ << "memory\t" << effect << '\t' << size << '\t' << number(megabytes) << '\n';
}

void Report::missing(const Case& what) {
  std::printf("%-70s not measured: the peer, or a part of it, is not installed\n", titleOf(what).c_str());
}

bool Report::agree(const Case& what, const std::string& otherName, const Picture& ours, const Picture& other,
                   const Difference& tolerance) {
  const Difference difference = differenceOf(ours, other);
  if (difference.mean <= tolerance.mean && difference.most <= tolerance.most) return true;
  char why[128];
  std::snprintf(why, sizeof why, "mean difference %.3f, largest %d", difference.mean, difference.most);
  refuse(titleOf(what) + ": " + why + " from " + otherName);
  return false;
}

void Report::refuse(const std::string& why) {
  std::printf("refused: %s\n", why.c_str());
  ++refusals_;
}

}  // namespace bench
