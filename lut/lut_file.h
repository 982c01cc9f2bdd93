#pragma once

#include <memory>
#include <streambuf>
#include <string>

namespace Lumvane {

/// The text of `path` from its last '.' on, dot included, with the letters a to z in upper case; empty when there is no
/// dot. Dots in directories count as well: "a.b/c" has the extension ".B/C".
std::u16string lutExtension(const std::u16string& path);

/// A file read without translation of line endings. Only regular files are opened: anything else might block the host,
/// or never end.
///
/// On POSIX the path is converted to UTF-8. For hosts that build Windows paths, a path that cannot be opened as it is
/// is tried again with slashes instead of backslashes.
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
