// Reading and writing files, and the errors reported when that fails.
#pragma once

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>

namespace host {

/// Exit codes, as listed in --help.
enum class ExitCode { kOther = 1, kUsage = 2, kInput = 3, kOutput = 4 };

/// An error that the user can fix. The text names the file and what is wrong with it.
class Error : public std::runtime_error {
 public:
  Error(ExitCode code, const std::string& text) : std::runtime_error(text), code(code) {}
  /// Builds a text such as "cannot read picture 'photo.png': No such file or directory".
  Error(ExitCode code, const std::string& failed, const std::filesystem::path& path, const std::string& reason);

  const ExitCode code;
  bool isDiskFull = false;
};

/// Replaces control characters, which file names may contain and terminals obey, by question marks; keeps newlines.
std::string printable(std::string text);

/// Prints a message to standard error.
void note(const std::string& text);

constexpr const char* kOutOfMemory = "it needs more memory than --memory allows";
bool isOutOfMemory(const std::exception& error);

/// Converts a path to UTF-16, which the library expects. Throws an Error with the name if it is not valid UTF-8, which
/// POSIX systems allow.
std::u16string libraryPath(const std::string& name);

/// Opens a file for reading. Throws an Error whose text begins with `failed`.
std::ifstream openInput(const std::string& failed, const std::filesystem::path& path);

/// Creates a folder if it does not exist. Throws an Error with its name if that fails.
void makeFolder(const std::filesystem::path& folder);

/// A file that appears under its name only once complete: until then it has a temporary name in the same folder, so
/// that no failure leaves a partial file or loses an older one. A replaced file's owner, permissions and hard links are
/// kept. Anything but a regular file, such as a device, is written directly, and so is standard output, for "-". There
/// may be only one such file at a time.
///
/// All members throw an Error with the file's name.
class OutputFile {
 public:
  explicit OutputFile(const std::filesystem::path& path);
  /// Removes an unfinished file.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void write(const void* data, size_t size);
  void finish();

 private:
  [[noreturn]] void fail(const std::error_code& error) const;

  std::filesystem::path path_;
  std::filesystem::path target_;      ///< `path_` with symbolic links resolved
  std::filesystem::path unfinished_;  ///< empty if written directly
  bool replaces_ = true;              ///< false: copied into the older file once complete
  FILE* file_;
};

/// Installs handlers that remove the unfinished file when a signal, such as an interrupt or hang-up, ends the program.
void removeUnfinishedFileOnSignals();

}  // namespace host
