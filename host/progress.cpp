#include "host/progress.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "host/platform.h"

namespace host {
namespace {

constexpr auto kRedraw = std::chrono::milliseconds(100);

std::string bar(size_t done, size_t total) {
  constexpr size_t kWidth = 20;
  const size_t filled = kWidth * std::min(done, total) / total;
  return "[" + std::string(filled, '#') + std::string(kWidth - filled, '.') + "] ";
}

std::string clockTime(double seconds) {
  const auto whole = static_cast<long>(seconds + 0.5);
  char text[32];
  if (whole < 60) {
    std::snprintf(text, sizeof text, "%ld s", whole);
  } else if (whole < 3600) {
    std::snprintf(text, sizeof text, "%ld:%02ld min", whole / 60, whole % 60);
  } else {
    std::snprintf(text, sizeof text, "%ld:%02ld h", whole / 3600, whole / 60 % 60);
  }
  return text;
}

}  // namespace

Progress::Progress(std::string unit, size_t total)
    : unit_(std::move(unit)),
      total_(total),
      start_(Clock::now()),
      drawn_(start_ - kRedraw),
      visible_(total != 1 && errorStreamIsTerminal()) {}

Progress::~Progress() {
  if (!visible_) return;
  drawn_ -= kRedraw;
  draw();
  std::fputc('\n', stderr);
}

void Progress::begin(const std::string& name) {
  constexpr size_t kLongestName = 20;  // a line that breaks cannot be redrawn in place
  size_t kept = kLongestName - 2;
  while (kept > 0 && kept < name.size() && (static_cast<unsigned char>(name[kept]) & 0xC0) == 0x80) --kept;  // UTF-8
  name_ = name.size() <= kLongestName ? name : name.substr(0, kept) + "..";
  draw();
}

void Progress::finishStep() {
  ++done_;
  if (done_ == total_) name_.clear();
  draw();
}

void Progress::draw() {
  const auto now = Clock::now();
  if (!visible_ || now - drawn_ < kRedraw) return;
  drawn_ = now;
  const double time = std::chrono::duration<double>(now - start_).count();
  std::string line =
      total_ != 0 ? bar(done_, total_) + std::to_string(done_) + "/" + std::to_string(total_) : std::to_string(done_);
  line += " " + unit_;
  if (done_ != 0) {
    char rate[32];
    std::snprintf(rate, sizeof rate, ", %.1f a second", static_cast<double>(done_) / std::max(time, 1e-3));
    line += rate;
    if (done_ < total_)
      line += ", " + clockTime(time * static_cast<double>(total_ - done_) / static_cast<double>(done_)) + " left";
  }
  if (!name_.empty()) line += "  " + name_;
  std::fprintf(stderr, "\r%s\x1b[K", line.c_str());  // the end clears what a longer line left behind
  std::fflush(stderr);
}

}  // namespace host
