// Where Windows and other systems differ for a program on the command line.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace host {

/// The arguments of the program in UTF-8, which Windows gives to main in the code page of its language. Also makes what
/// the program prints UTF-8 there.
std::vector<std::string> utf8Arguments(int argc, char** argv);

/// Whether the standard error stream is a terminal on which a line can be drawn over.
bool errorStreamIsTerminal();

/// Keeps the system from translating the ends of lines on the standard input or output.
void makeBinary(FILE* stream);

}  // namespace host
