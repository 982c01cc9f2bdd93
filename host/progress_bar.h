#pragma once

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

}  // namespace host
