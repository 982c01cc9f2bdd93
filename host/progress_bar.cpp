#include "host/progress_bar.h"

#include <cstdio>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace host {
namespace {

bool errorStreamIsTerminal() {
#ifdef _WIN32
  return _isatty(_fileno(stderr)) != 0;
#else
  return isatty(STDERR_FILENO) != 0;
#endif
}

}  // namespace

ProgressBar::ProgressBar(size_t steps) : steps_(steps), visible_(steps > 1 && errorStreamIsTerminal()) {}

ProgressBar::~ProgressBar() {
  if (visible_) std::fputc('\n', stderr);
}

void ProgressBar::begin(const std::string& name) {
  constexpr size_t kLongestName = 24;  // a line that breaks cannot be redrawn in place
  name_ = name.size() <= kLongestName ? name : name.substr(0, kLongestName - 2) + "..";
  draw();
}

void ProgressBar::finish() {
  ++finished_;
  draw();
}

FrameCounter::FrameCounter()
    : start_(std::chrono::steady_clock::now()), drawn_(start_), visible_(errorStreamIsTerminal()) {}

FrameCounter::~FrameCounter() {
  if (!visible_) return;
  draw();
  std::fputc('\n', stderr);
}

void FrameCounter::step() {
  ++frames_;
  const auto now = std::chrono::steady_clock::now();
  if (!visible_ || now - drawn_ < std::chrono::milliseconds(100)) return;
  drawn_ = now;
  draw();
}

void FrameCounter::draw() const {
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start_;
  std::fprintf(stderr, "\r%zu frames, %.1f a second\x1b[K", frames_, static_cast<double>(frames_) / time.count());
  std::fflush(stderr);
}

void ProgressBar::draw() const {
  if (!visible_) return;
  constexpr size_t kWidth = 20;
  const size_t filled = kWidth * finished_ / steps_;
  const std::string bar = std::string(filled, '#') + std::string(kWidth - filled, '.');
  // "\x1b[K" clears what a longer name left behind.
  std::fprintf(stderr, "\r[%s] %zu/%zu %s\x1b[K", bar.c_str(), finished_, steps_, name_.c_str());
  std::fflush(stderr);
}

}  // namespace host
