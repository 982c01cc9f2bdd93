// Test input: frames, LUT files and noise.
#pragma once

#ifdef _WIN32
#include <process.h>
#else
#include <unistd.h>
#endif

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace test {

using Bytes = std::vector<uint8_t>;

/// The step of exhaustive loops, such as those over all colours: 1, but larger under a sanitizer or without
/// optimisation, where they would take ten times as long and find nothing more.
#if defined(LUMVANE_SANITIZED) || !defined(__OPTIMIZE__)
constexpr int kStep = 15;  // divides 255
#else
constexpr int kStep = 1;
#endif

/// A file in its own temporary folder, removed with the object.
class TemporaryFile {
 public:
  TemporaryFile(const std::filesystem::path& name, const std::string& bytes) : path_(folder_ / name) {
    std::filesystem::create_directories(path_.parent_path());
    std::ofstream(path_, std::ios::binary) << bytes;
  }
  ~TemporaryFile() { std::filesystem::remove_all(folder_); }
  TemporaryFile(const TemporaryFile&) = delete;
  std::u16string utf16() const { return path_.u16string(); }
  std::u16string folder() const { return path_.parent_path().u16string(); }

 private:
  static inline int count_ = 0;
  std::filesystem::path folder_ = std::filesystem::temp_directory_path() /
                                  ("lumvane_test_" + std::to_string(getpid()) + "_" + std::to_string(count_++));
  std::filesystem::path path_;
};

/// The two files that HDR objects load, in a temporary folder; an empty text means no file.
class HdrFolder : public TemporaryFile {
 public:
  HdrFolder(const std::string& hlg, const std::string& pq) : TemporaryFile("marker", "") {
    if (!hlg.empty()) std::ofstream(std::filesystem::path(folder()) / "HDR_HLG.cube") << hlg;
    if (!pq.empty()) std::ofstream(std::filesystem::path(folder()) / "HDR_PQ.cube") << pq;
  }
};

/// A .CUBE text of 2 points per axis that inverts every colour.
inline std::string negativeCube() { return "LUT_3D_SIZE 2\n1 1 1\n0 1 1\n1 0 1\n0 0 1\n1 1 0\n0 1 0\n1 0 0\n0 0 0\n"; }

/// The kind of values in a table; colours are 0 to 255.
enum class Values {
  kColours,  ///< random, slightly out of range on both sides, some of them integers
  kHalves,   ///< integers and halves, -300 to 300, and the floats next to them
  kWild,     ///< one in 30 tiny, huge, infinite or NaN: reveals points that are read at weight 0
};

/// A .CUBE text of random values, the same on every system.
inline std::string randomCube(int size, Values values = Values::kColours) {
  static const char* const kOdd[] = {"1e99", "-1e99", "nan",   "1e9",    "-3e9", "3e38",       "1e6",
                                     "-1e6", "1e19",  "1e-40", "-1e-40", "-0",   "2147483520", "2147483648"};
  std::mt19937 random(static_cast<unsigned>(size));
  // This maximum makes the scale of the values exactly 1.
  std::string text = "LUT_3D_SIZE " + std::to_string(size) + "\nDOMAIN_MAX 0.0039215688 0.0039215688 0.0039215688\n";
  for (int i = 0; i < size * size * size * 3; ++i) {
    const auto number = static_cast<uint32_t>(random()), kind = static_cast<uint32_t>(random());
    float value = static_cast<float>(number % 36000) / 100.0f - 50.0f;
    if (kind % 8 == 0) value = std::floor(value);
    if (values == Values::kHalves) {
      value = static_cast<float>(number % 1200) / 2.0f - 300.0f;
      if (kind % 3 != 0) value = std::nextafter(value, kind % 3 == 1 ? 1e9f : -1e9f);
    }
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.9g", value);
    text += values == Values::kWild && kind % 30 == 1 ? kOdd[kind / 30 % std::size(kOdd)] : buffer;
    text += i % 3 == 2 ? '\n' : ' ';
  }
  return text;
}

inline Bytes noise(size_t bytes, unsigned seed) {
  std::mt19937 random(seed);
  Bytes result(bytes);
  for (uint8_t& byte : result) byte = static_cast<uint8_t>(random());
  return result;
}

/// Noise with many 0 and 255 bytes, where sums are clamped.
inline Bytes harshNoise(size_t bytes, unsigned seed) {
  Bytes result = noise(bytes, seed);
  for (size_t i = 0; i < bytes; i += 1 + result[i] % 7) result[i] = result[i] % 2 == 0 ? 0 : 255;
  return result;
}

/// Every colour once, in steps of kStep: the three low bytes of its number, lowest first, and alpha from `alphaOf`.
template <class AlphaOf>
Bytes everyColour(const AlphaOf& alphaOf) {
  Bytes pixels;
  pixels.reserve((size_t{4} << 24) / kStep + 4);
  for (uint32_t i = 0; i < 1u << 24; i += kStep) {
    for (int c = 0; c < 3; ++c) pixels.push_back(static_cast<uint8_t>(i >> (8 * c)));
    pixels.push_back(static_cast<uint8_t>(alphaOf(i)));
  }
  return pixels;
}

/// A frame, BGRA or one byte per pixel, with rows `stride` bytes apart and guard bytes before, between and after them.
/// With a negative stride the top row is last.
struct Frame {
  static constexpr uint8_t kGuard = 0xA5;
  static constexpr size_t kBorder = 256;

  int width, height, stride, rowBytes;
  Bytes bytes;

  Frame(int frameWidth, int frameHeight, int strideBytes = 0, int pixelBytes = 4)
      : width(frameWidth),
        height(frameHeight),
        stride(strideBytes),
        rowBytes(pixelBytes * frameWidth),
        bytes(2 * kBorder + static_cast<size_t>(std::abs(step())) * (frameHeight - 1) + rowBytes, kGuard) {
    for (int y = 0; y < height; ++y) std::fill_n(row(y), static_cast<unsigned>(rowBytes), uint8_t{0});
  }
  int step() const { return stride == 0 ? rowBytes : stride; }
  uint8_t* data() { return bytes.data() + kBorder + (step() < 0 ? static_cast<size_t>(-step()) * (height - 1) : 0); }
  uint8_t* row(int y) { return data() + static_cast<ptrdiff_t>(step()) * y; }

  void fill(const Bytes& packedRows) {
    for (int y = 0; y < height; ++y) std::copy_n(packedRows.begin() + ptrdiff_t{y} * rowBytes, rowBytes, row(y));
  }
  void fillWithNoise(unsigned seed) { fill(noise(static_cast<size_t>(rowBytes) * height, seed)); }
  Bytes packed() {
    Bytes result;
    for (int y = 0; y < height; ++y) result.insert(result.end(), row(y), row(y) + rowBytes);
    return result;
  }

  /// Returns whether no byte outside the rows has changed.
  bool guardsIntact() {
    Frame blank = *this;
    for (int y = 0; y < height; ++y) std::fill_n(blank.row(y), rowBytes, kGuard);
    return std::all_of(blank.bytes.begin(), blank.bytes.end(), [](uint8_t byte) { return byte == kGuard; });
  }
};

}  // namespace test
