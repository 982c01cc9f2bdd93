#pragma once

#include <memory>
#include <streambuf>
#include <string>

namespace Lumvane {

/// The text of `path` from its last '.' on, dot included, with the letters a to z in upper case; empty when there is
/// no dot. Directories count as well: "a.b/c" has the extension ".B/C".
std::u16string lutExtension(const std::u16string& path);

/// A file that is read as it stands, with no translation of line ends. Regular files alone are opened: anything else
/// might keep a host waiting, or never end.
///
/// POSIX file systems get the path as UTF-8. Hosts that build paths the Windows way still find their files there: a
/// path that cannot be opened as it stands is tried once more with slashes in place of its backslashes.
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
