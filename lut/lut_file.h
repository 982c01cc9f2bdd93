#pragma once

#include <memory>
#include <streambuf>
#include <string>

namespace Lumvane {

/// Returns the text of `path` from its last '.' on, including the dot, with the letters a to z in upper case; empty if
/// there is no dot. Dots in directories count as well: "a.b/c" has the extension ".B/C".
std::u16string lutExtension(const std::u16string& path);

/// A file that is read without translating line endings. Only regular files are opened: others might block the host or
/// never end.
///
/// On POSIX the path is converted to UTF-8. For hosts that build Windows paths, a path that cannot be opened is retried
/// with slashes instead of backslashes.
class LutFile : public std::streambuf {
 public:
  explicit LutFile(const std::u16string& path);
  ~LutFile() override;
  LutFile(const LutFile&) = delete;
  LutFile& operator=(const LutFile&) = delete;

  bool isOpen() const { return descriptor_ >= 0; }

 private:
  int_type underflow() override;

  std::unique_ptr<char[]> buffer_;
  int descriptor_;
};

}  // namespace Lumvane
