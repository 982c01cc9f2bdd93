// LUT files and frames that the tests take as input.
#pragma once

#ifdef _WIN32
#include <process.h>
#else
#include <unistd.h>
#endif

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace test {

/// Loops over all colours and the like go by this: over each of them, but under a sanitizer, which takes ten times as
/// long and sees in one of them what it sees in the next, over some.
#ifdef LUMVANE_SANITIZED
constexpr int kStep = 15;  // 255 is a multiple
#else
constexpr int kStep = 1;
#endif

/// A file in a temporary folder of its own, gone with the object.
class TemporaryFile {
 public:
  TemporaryFile(const std::filesystem::path& name, const std::string& bytes) : path_(folder_ / name) {
    std::filesystem::create_directories(path_.parent_path());
    std::ofstream(path_, std::ios::binary) << bytes;
  }
  ~TemporaryFile() { std::filesystem::remove_all(folder_); }
  std::u16string utf16() const { return path_.u16string(); }

 private:
  static inline int count_ = 0;
  std::filesystem::path folder_ = std::filesystem::temp_directory_path() /
                                  ("lumvane_test_" + std::to_string(getpid()) + "_" + std::to_string(count_++));
  std::filesystem::path path_;
};

/// A .CUBE text of 2 points per axis in which every colour becomes its negative.
inline std::string negativeCube() { return "LUT_3D_SIZE 2\n1 1 1\n0 1 1\n1 0 1\n0 0 1\n1 1 0\n0 1 0\n1 0 0\n0 0 0\n"; }

/// `text` with every `what` in it replaced.
inline std::string replaced(std::string text, const std::string& what, const std::string& with) {
  for (size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size()) {
    text.replace(at, what.size(), with);
  }
  return text;
}

/// A BGRA frame with its rows `stride` bytes apart and known bytes before, between and behind them. A negative stride
/// puts the top row last.
struct Frame {
  static constexpr uint8_t kGuard = 0xA5;
  static constexpr size_t kBorder = 256;

  int width, height, stride;
  std::vector<uint8_t> bytes;

  Frame(int frameWidth, int frameHeight, int strideBytes = 0)
      : width(frameWidth),
        height(frameHeight),
        stride(strideBytes),
        bytes(2 * kBorder + static_cast<size_t>(std::abs(step())) * (frameHeight - 1) + 4 * frameWidth, kGuard) {
    for (int y = 0; y < height; ++y) std::fill_n(row(y), 4 * width, uint8_t{0});
  }
  int step() const { return stride == 0 ? 4 * width : stride; }
  uint8_t* data() { return bytes.data() + kBorder + (step() < 0 ? static_cast<size_t>(-step()) * (height - 1) : 0); }
  uint8_t* row(int y) { return data() + static_cast<ptrdiff_t>(step()) * y; }

  void fillWithNoise(unsigned seed) {
    std::mt19937 random(seed);
    for (int y = 0; y < height; ++y) {
      for (int i = 0; i < 4 * width; ++i) row(y)[i] = static_cast<uint8_t>(random());
    }
  }

  /// True when no byte outside the rows has changed.
  bool guardsIntact() {
    Frame blank = *this;
    for (int y = 0; y < height; ++y) std::fill_n(blank.row(y), 4 * width, kGuard);
    return std::all_of(blank.bytes.begin(), blank.bytes.end(), [](uint8_t byte) { return byte == kGuard; });
  }
};

}  // namespace test
