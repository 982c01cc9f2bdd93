// LUT files for timing effects.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace bench {

/// A .cube file of the given size in its own temporary folder, removed with the object. The look is a contrast curve of
/// different strength per channel with some of the next channel mixed in: smooth, so that programs with different
/// arithmetic agree, and different per channel, so that swapped channels show.
class LutFile {
 public:
  explicit LutFile(int size, const std::string& name = "bench.cube") : path_(folder_ / name) {
    std::filesystem::create_directories(folder_);
    std::ofstream out(path_);
    out << "LUT_3D_SIZE " << size << '\n';
    const double step = 1.0 / (size - 1);
    const auto curve = [](double x, double amount) { return x + amount * (x * x * (3.0 - 2.0 * x) - x); };
    char row[64];
    for (int blue = 0; blue < size; ++blue) {
      for (int green = 0; green < size; ++green) {
        for (int red = 0; red < size; ++red) {
          const double r = curve(red * step, 1.0), g = curve(green * step, 0.5), b = curve(blue * step, 0.0);
          std::snprintf(row, sizeof row, "%.6f %.6f %.6f\n", 0.9 * r + 0.1 * g, 0.9 * g + 0.1 * b, 0.8 * b + 0.2 * r);
          out << row;
        }
      }
    }
  }
  ~LutFile() { std::filesystem::remove_all(folder_); }
  LutFile(const LutFile&) = delete;
  LutFile& operator=(const LutFile&) = delete;
  const std::filesystem::path& path() const { return path_; }

 private:
  static inline int count_ = 0;
  std::filesystem::path folder_ = std::filesystem::temp_directory_path() /
                                  ("lumvane_bench_" + std::to_string(getpid()) + "_" + std::to_string(count_++));
  std::filesystem::path path_;
};

/// The two files that HDR loads, with the same look, in their own folder.
class HdrLutFiles {
 public:
  explicit HdrLutFiles(int size) : hlg_(size, "HDR_HLG.cube") {
    std::filesystem::copy_file(hlg_.path(), folder() / "HDR_PQ.cube");
  }
  std::filesystem::path folder() const { return hlg_.path().parent_path(); }
  const std::filesystem::path& hlg() const { return hlg_.path(); }

 private:
  LutFile hlg_;
};

}  // namespace bench
