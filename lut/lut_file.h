#pragma once

#include <fstream>
#include <string>

namespace Lumvane {

/// The text of `path` from its last '.' on, dot included, with the letters a to z in upper case; empty when there is
/// no dot. Directories count as well: "a.b/c" has the extension ".B/C".
std::u16string lutExtension(const std::u16string& path);

/// Opens a file for reading bytes, with no translation of line ends. The stream is not open when that fails.
///
/// POSIX file systems get the path as UTF-8. Hosts that build paths the Windows way still find their files there: a
/// path that cannot be opened as it stands is tried once more with slashes in place of its backslashes.
std::ifstream openLutFile(const std::u16string& path);

}  // namespace Lumvane
