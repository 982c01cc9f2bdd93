// LUT files to time effects with.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace bench {

/// A .cube file of the given size with a plain contrast curve, in a temporary folder of its own, gone with the object.
class LutFile {
 public:
  explicit LutFile(int size, const std::string& name = "bench.cube") : path_(folder_ / name) {
    std::filesystem::create_directories(folder_);
    std::ofstream out(path_);
    out << "LUT_3D_SIZE " << size << '\n';
    const auto value = [size](int i) {
      const double x = static_cast<double>(i) / (size - 1);
      return std::to_string(x * x * (3.0 - 2.0 * x));
    };
    for (int blue = 0; blue < size; ++blue) {
      for (int green = 0; green < size; ++green) {
        for (int red = 0; red < size; ++red) out << value(red) << ' ' << value(green) << ' ' << value(blue) << '\n';
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

}  // namespace bench
