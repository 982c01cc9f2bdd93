// Differences between Windows and other systems for a command-line program. File names are UTF-8 in arguments and
// messages, and UTF-16 on Windows when files are opened.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace host {

/// Returns the program's arguments in UTF-8; Windows passes them to main in the system code page. There it also sets
/// console output to UTF-8 and standard input and output to binary mode.
std::vector<std::string> utf8Arguments(int argc, char** argv);

std::filesystem::path toPath(const std::string& name);
std::string toName(const std::filesystem::path& path);

/// Returns ".png" for "photo.PNG".
std::string lowerCaseExtension(const std::filesystem::path& path);

/// Returns the same path for all names of one file: resolves symbolic links and, on Windows, folds case.
std::filesystem::path uniquePath(const std::filesystem::path& path);

bool errorStreamIsTerminal();

/// Limits the memory of the program, so that a small file that claims to be a large picture cannot exhaust the
/// machine's: allocations beyond the limit fail. Does nothing on Windows.
void limitMemory(double gigabytes);

}  // namespace host
