#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "host/platform.h"

namespace host {

/// A progress line on standard error, redrawn in place: steps done, rate, time left. Silent if that is not a terminal,
/// and for work of one step.
class Progress {
 public:
  /// `total` is 0 if unknown; `unit` is what is counted, such as "frames".
  Progress(const char* unit, size_t total)
      : unit_(unit), total_(total), visible_(total != 1 && errorStreamIsTerminal()) {}
  ~Progress() {
    if (visible_) std::fputc('\n', stderr);
  }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void finishStep() {
    ++done_;
    const auto now = Clock::now();
    if (!visible_ || (done_ != total_ && now - drawn_ < std::chrono::milliseconds(100))) return;
    drawn_ = now;
    const double rate = done_ / std::max(std::chrono::duration<double>(now - start_).count(), 1e-3);
    if (total_ == 0) {
      std::fprintf(stderr, "\r%.0f %s, %.1f a second  ", done_, unit_, rate);
    } else {
      // The trailing blanks overwrite the rest of a longer line.
      std::fprintf(stderr, "\r%.0f/%.0f %s, %.1f a second, %.0f s left     ", done_, total_, unit_, rate,
                   (total_ - done_) / rate);
    }
    std::fflush(stderr);
  }

 private:
  using Clock = std::chrono::steady_clock;
  const char* unit_;
  double total_, done_ = 0.0;
  Clock::time_point start_ = Clock::now(), drawn_ = {};
  bool visible_;
};

}  // namespace host
