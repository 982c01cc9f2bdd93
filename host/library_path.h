#pragma once

#include <string>

namespace host {

/// A path in UTF-16, as the library takes it. Throws a Fault with the path when it is no text, as names of files on
/// POSIX systems need not be.
std::u16string libraryPath(const std::string& path);

}  // namespace host
