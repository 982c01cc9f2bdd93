// What was measured: a line for people, a row of tab-separated fields for the scripts that make tables.
#pragma once

#include <fstream>
#include <optional>
#include <string>

#include "bench/peers/picture.h"
#include "bench/peers/timing.h"

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

  /// "cpu", "gcc 12.2".
  void fact(const std::string& name, const std::string& value);
  /// Times the two sides and adds what comes of it.
  void compare(const Case& what, const Side& ours, const Side& other, const std::string& otherName);
  void add(const Case& what, const Timing& ours, const Timing& other, const std::string& otherName);
  void memory(const std::string& effect, const std::string& size, double megabytes);
  void missing(const Case& what, const std::string& why);
  /// Whether two results are the same but for roundings; if not, the case is refused.
  bool agree(const Case& what, const std::string& otherName, const Picture& ours, const Picture& other, double mean,
             int most);
  void refuse(const std::string& why);
  int refusals() const { return refusals_; }

 private:
  std::ofstream file_;
  int refusals_ = 0;
};

}  // namespace bench
