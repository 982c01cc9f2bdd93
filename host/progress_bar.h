#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace host {

/// A bar on the standard error stream, redrawn in place; silent when that is no terminal.
class ProgressBar {
 public:
  explicit ProgressBar(size_t steps);
  ~ProgressBar();

  /// Shows the name of the step that begins behind the bar, which fills by the steps that are finished.
  void begin(const std::string& name);
  void finish();

 private:
  void draw() const;

  size_t steps_;
  size_t finished_ = 0;
  std::string name_;
  bool visible_;
};

/// A line on the standard error stream with the frames done and their rate; silent when that is no terminal.
class FrameCounter {
 public:
  FrameCounter();
  ~FrameCounter();
  void step();

 private:
  void draw() const;

  std::chrono::steady_clock::time_point start_, drawn_;
  size_t frames_ = 0;
  bool visible_;
};

}  // namespace host
