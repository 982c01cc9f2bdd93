#pragma once

#include <cstddef>
#include <cstdio>
#include <filesystem>

namespace host {

/// A file that takes its name only when it is complete: until then it stands beside its place under another one, so that
/// whatever goes wrong leaves no half-written file and no older one lost. What is no ordinary file, such as a device, is
/// written directly, and so is the standard output, for "-".
///
/// All throw a Fault with the file's name.
class OutputFile {
 public:
  explicit OutputFile(const std::filesystem::path& path);
  /// Removes what was not finished.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void write(const void* data, size_t size);
  void finish();

 private:
  [[noreturn]] void fail(int error) const;
  bool isPlaced() const { return !unfinished_.empty(); }

  std::filesystem::path path_;
  std::filesystem::path target_;      ///< where `path_` leads, by symbolic links
  std::filesystem::path unfinished_;  ///< empty when written directly
  FILE* file_;
};

/// From now on an interrupt, a hang-up or a request to end removes unfinished files before it ends the program. To be
/// called ahead of all threads.
void removeUnfinishedFilesOnSignals();

}  // namespace host
