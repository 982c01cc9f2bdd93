// Files as the program reads and writes them, and what it says when that cannot be.
#pragma once

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>

namespace host {

/// What the program ends with, as its help tells.
enum class ExitCode { kOther = 1, kUsage = 2, kInput = 3, kOutput = 4 };

/// What a person can mend. The text names the file and what is wrong with it.
class Error : public std::runtime_error {
 public:
  Error(ExitCode code, const std::string& text) : std::runtime_error(text), code(code) {}
  /// As "cannot read picture 'photo.png': No such file or directory".
  Error(ExitCode code, const std::string& failed, const std::filesystem::path& path, const std::string& reason);

  const ExitCode code;
  bool isDiskFull = false;
};

/// The text with control characters, which names of files may hold and terminals obey, as question marks; ends of lines stay.
std::string printable(std::string text);

/// Tells something on the standard error stream that is no error.
void note(const std::string& text);

constexpr const char* kOutOfMemory = "it needs more memory than --memory allows";
bool isOutOfMemory(const std::exception& error);

/// A path in UTF-16, as the library takes it. Throws an Error with the name when it is no text, as names of files on
/// POSIX systems need not be.
std::u16string libraryPath(const std::string& name);

/// Opens a file to read. `failed` begins the text of the Error that is thrown otherwise.
std::ifstream openInput(const std::string& failed, const std::filesystem::path& path);

/// Makes a folder when there is none. Throws an Error with its name when that fails.
void makeFolder(const std::filesystem::path& folder);

/// A file that takes its name only when it is complete: until then it stands beside its place under another one, so
/// that whatever goes wrong leaves no half-written file and no older one lost. Owner, permissions and further names of a
/// file that is replaced stay. What is no ordinary file, such as a device, is written directly, and so is the standard
/// output, for "-". There is one such file at a time.
///
/// All throw an Error with the file's name.
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
  [[noreturn]] void fail(const std::error_code& error) const;

  std::filesystem::path path_;
  std::filesystem::path target_;      ///< where `path_` leads, by symbolic links
  std::filesystem::path unfinished_;  ///< empty when written directly
  bool replaces_ = true;              ///< false: is copied into the older file when it is complete
  FILE* file_;
};

/// From now on an interrupt, a hang-up or a request to end removes the unfinished file before it ends the program.
void removeUnfinishedFileOnSignals();

}  // namespace host
