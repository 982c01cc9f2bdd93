#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace host {

/// A line on the standard error stream, redrawn in place: how much is done, at what rate, how much time is left. Silent
/// when that is no terminal, and for work of one step.
class Progress {
 public:
  /// `total` is 0 when it is not known; `unit` is what is counted, such as "frames".
  Progress(std::string unit, size_t total);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Shows the name of the step that begins.
  void begin(const std::string& name);
  void finishStep();

 private:
  void draw();

  using Clock = std::chrono::steady_clock;
  std::string unit_;
  size_t total_;
  size_t done_ = 0;
  std::string name_;
  Clock::time_point start_, drawn_;
  bool visible_;
};

}  // namespace host
