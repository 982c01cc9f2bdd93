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

  /// Shows that one more step begins, with its name behind the bar.
  void step(const std::string& name);

 private:
  void draw(const std::string& text) const;

  size_t steps_;
  size_t begun_ = 0;
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
