// Results: a line of text for people, and tab-separated fields for the scripts that make tables.
#pragma once

#include <fstream>
#include <optional>
#include <string>

#include "bench/peer.h"
#include "bench/timing.h"

namespace bench {

/// How two times are compared, and the target.
struct Bar {
  enum Kind {
    timesAsFast,   ///< other / ours, at least the limit
    timesTheTime,  ///< ours / other, at most the limit
    moreTime,      ///< ours - other in ms, at most the limit
  };
  Kind kind = timesAsFast;
  std::optional<double> limit = {};
};

inline std::optional<double> onlyIf(bool withBar, double limit) {
  return withBar ? std::optional(limit) : std::nullopt;
}

struct Case {
  std::string name;
  int threads;
  double megapixels = 0.0;  ///< per call; 0 if a call is not a frame
  Bar bar = {};
};

struct Settings {
  int repeats = 15;
  double blockMs = 20.0;
  std::string only;    ///< only cases whose names contain this shell pattern, such as "1080p*FFmpeg"
  bool smoke = false;  ///< small frames, once: checks that everything runs, not how fast
};

class Report {
 public:
  Report(const Settings& settings, const std::string& file);

  const Settings settings;
  bool wants(const std::string& name) const;
  /// The size, with `smoke` a tenth of its width and height.
  Size sized(const Size& size) const;

  /// Reports a fact about the setup, such as "Compiler" and "gcc 12.2".
  void fact(const std::string& name, const std::string& value);
  /// Times the two sides and adds the result.
  void compare(const Case& what, const Side& ours, const Side& other, const std::string& otherName);
  using MakePeer = std::function<std::unique_ptr<Peer>()>;
  /// Times our side, which writes `dst`, against a peer whose frame must match within `tolerance`.
  void comparePeer(const Case& what, const Side& ours, const Picture& dst, const MakePeer& make,
                   const Difference& tolerance);
  void add(const Case& what, const Timing& ours, const Timing& other, const std::string& otherName);
  void growth(const std::string& effect, int threads, const Size& size, const Timing& timing);
  void memory(const std::string& effect, const std::string& size, double megabytes);
  void missing(const Case& what);
  /// Returns whether two results match within `tolerance`; if not, refuses the case.
  bool agree(const Case& what, const std::string& otherName, const Picture& ours, const Picture& other,
             const Difference& tolerance);
  void refuse(const std::string& why);
  int refusals() const { return refusals_; }

 private:
  std::ofstream file_;
  int refusals_ = 0;
};

}  // namespace bench
