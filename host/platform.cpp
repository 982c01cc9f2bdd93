#include "host/platform.h"

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <windows.h>
// shellapi.h needs windows.h.
#include <shellapi.h>
#endif

namespace host {

#ifdef _WIN32

std::vector<std::string> utf8Arguments(int /*argc*/, char** /*argv*/) {
  SetConsoleOutputCP(CP_UTF8);
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 0; i < count; ++i) {
    arguments.emplace_back(
        static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, wide[i], -1, nullptr, 0, nullptr, nullptr)), '\0');
    std::string& argument = arguments.back();
    WideCharToMultiByte(CP_UTF8, 0, wide[i], -1, argument.data(), static_cast<int>(argument.size()), nullptr, nullptr);
    argument.pop_back();  // the zero behind it
  }
  LocalFree(wide);
  return arguments;
}

void makeBinary(FILE* stream) { _setmode(_fileno(stream), _O_BINARY); }

#else

std::vector<std::string> utf8Arguments(int argc, char** argv) { return {argv, argv + argc}; }

void makeBinary(FILE* /*stream*/) {}

#endif

}  // namespace host
