#include "host/platform.h"

#include <cstdlib>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <windows.h>
// shellapi.h needs windows.h.
#include <shellapi.h>

#include "host/paths.h"
#else
#include <unistd.h>
#endif

namespace host {

#ifdef _WIN32

std::vector<std::string> utf8Arguments(int /*argc*/, char** /*argv*/) {
  static const UINT codePageBefore = GetConsoleOutputCP();  // of the console, which outlives the program
  if (SetConsoleOutputCP(CP_UTF8)) std::atexit([] { SetConsoleOutputCP(codePageBefore); });
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 0; i < count; ++i) arguments.push_back(toName(wide[i]));
  LocalFree(wide);
  return arguments;
}

bool errorStreamIsTerminal() {
  HANDLE const console = GetStdHandle(STD_ERROR_HANDLE);
  DWORD mode = 0;
  return GetConsoleMode(console, &mode) && SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

void makeBinary(FILE* stream) { _setmode(_fileno(stream), _O_BINARY); }

#else

std::vector<std::string> utf8Arguments(int argc, char** argv) { return {argv, argv + argc}; }

bool errorStreamIsTerminal() { return isatty(STDERR_FILENO) != 0; }

void makeBinary(FILE* /*stream*/) {}

#endif

}  // namespace host
