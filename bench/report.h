// What was measured: a line for people, a row of tab-separated fields for the scripts that make tables.
#pragma once

#include <fstream>
#include <optional>
#include <string>

#include "bench/peer.h"
#include "bench/timing.h"

namespace bench {

/// How one time stands to the other, and what is asked of it.
struct Bar {
  enum Kind {
    timesAsFast,   ///< other / ours, at least the limit
    timesTheTime,  ///< ours / other, at most the limit
    moreTime,      ///< ours - other in ms, at most the limit
  };
  Kind kind = timesAsFast;
  std::optional<double> limit = {};
};

inline std::optional<double> onlyIf(bool barred, double limit) { return barred ? std::optional(limit) : std::nullopt; }

struct Case {
  std::string name;
  int threads;
  double megapixels = 0.0;  ///< of one call; 0 where it is no frame
  Bar bar = {};
};

struct Settings {
  int repeats = 15;
  double blockMs = 20.0;
  std::string only;    ///< the cases in whose names this shell pattern is found, such as "1080p*FFmpeg"
  bool smoke = false;  ///< small frames, once: whether everything runs, not how fast
};

class Report {
 public:
  Report(const Settings& settings, const std::string& file);

  const Settings settings;
  bool wants(const std::string& name) const;
  /// The size, or a tenth of both sides for `smoke`.
  Size sized(const Size& size) const;

  /// "cpu", "gcc 12.2".
  void fact(const std::string& name, const std::string& value);
  /// Times the two sides and adds what comes of it.
  void compare(const Case& what, const Side& ours, const Side& other, const std::string& otherName);
  using MakePeer = std::function<std::unique_ptr<Peer>()>;
  /// Times ours, which writes `dst`, against a peer that is to make the same of the frame but for `roundings`.
  void comparePeer(const Case& what, const Side& ours, const Picture& dst, const MakePeer& make,
                   const Difference& roundings);
  void add(const Case& what, const Timing& ours, const Timing& other, const std::string& otherName);
  void growth(const std::string& effect, int threads, const Size& size, const Timing& timing);
  void memory(const std::string& effect, const std::string& size, double megabytes);
  void missing(const Case& what);
  /// Whether two results are the same but for roundings; if not, the case is refused.
  bool agree(const Case& what, const std::string& otherName, const Picture& ours, const Picture& other,
             const Difference& roundings);
  void refuse(const std::string& why);
  int refusals() const { return refusals_; }

 private:
  std::ofstream file_;
  int refusals_ = 0;
};

}  // namespace bench
