// Where Windows and other systems differ for a program on the command line. Names of files are UTF-8 in arguments and
// messages, and on Windows UTF-16 where files are opened.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace host {

/// The arguments of the program in UTF-8, which Windows gives to main in the code page of its language. There, what the
/// program prints becomes UTF-8 as well, and the ends of lines on the standard input and output are left as they are.
std::vector<std::string> utf8Arguments(int argc, char** argv);

std::filesystem::path toPath(const std::string& name);
std::string toName(const std::filesystem::path& path);

/// As ".png", for "photo.PNG".
std::string lowerCaseExtension(const std::filesystem::path& path);

/// A path that is the same for names that the system takes for the same, and for symbolic links to one file.
std::filesystem::path uniquePath(const std::filesystem::path& path);

bool errorStreamIsTerminal();

/// The most memory that the program may use from now on, so that a small file which claims to be a large picture cannot
/// take all that the machine has: what would go beyond it fails as if there were no more. Not on Windows.
void limitMemory(double gigabytes);

}  // namespace host
