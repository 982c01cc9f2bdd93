// Where Windows and other systems differ for a program on the command line.
#pragma once

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace host {

/// The arguments of the program in UTF-8, which Windows gives to main in the code page of its language. Also makes what
/// the program prints UTF-8 there.
std::vector<std::string> utf8Arguments(int argc, char** argv);

/// std::fopen, for any name of a file. `mode` is one of binary files.
FILE* openFile(const std::filesystem::path& path, const char* mode);

/// Keeps the system from translating the ends of lines on the standard input or output.
void makeBinary(FILE* stream);

}  // namespace host
