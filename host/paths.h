// Names of files: UTF-8 in arguments and messages, on Windows UTF-16 where files are opened.
#pragma once

#include <cstdio>
#include <filesystem>
#include <string>

namespace host {

std::filesystem::path toPath(const std::string& name);
std::string toName(const std::filesystem::path& path);  ///< on Windows with U+FFFD for halves of surrogate pairs

/// A path that is the same for names that the system takes for the same.
std::filesystem::path foldedCase(const std::filesystem::path& path);

/// A path in UTF-16, as the library takes it. Throws a Fault with the name when it is no text, as names of files on
/// POSIX systems need not be.
std::u16string libraryPath(const std::string& name);

/// std::fopen in the binary mode "rb" or "wb".
FILE* openFile(const std::filesystem::path& path, const char* mode);

}  // namespace host
