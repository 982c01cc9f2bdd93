#include "host/platform.h"

#include <algorithm>
#include <cctype>
#include <system_error>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <windows.h>
// shellapi.h needs windows.h.
#include <shellapi.h>

#include <cstdio>
#include <cstdlib>
#else
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace host {

namespace fs = std::filesystem;

fs::path toPath(const std::string& name) { return std::u8string(name.begin(), name.end()); }

std::string toName(const fs::path& path) {
  const std::u8string name = path.u8string();
  return {name.begin(), name.end()};
}

std::string lowerCaseExtension(const fs::path& path) {
  std::string extension = toName(path.extension());
  for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return extension;
}

#ifdef _WIN32

std::vector<std::string> utf8Arguments(int /*argc*/, char** /*argv*/) {
  for (FILE* stream : {stdin, stdout}) _setmode(_fileno(stream), _O_BINARY);
  static const UINT codePageBefore = GetConsoleOutputCP();  // restored at exit: the console outlives the program
  if (SetConsoleOutputCP(CP_UTF8)) std::atexit([] { SetConsoleOutputCP(codePageBefore); });
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 0; i < count; ++i) arguments.push_back(toName(wide[i]));
  LocalFree(wide);
  return arguments;
}

bool errorStreamIsTerminal() { return _isatty(_fileno(stderr)) != 0; }

void limitMemory(double) {}

#else

std::vector<std::string> utf8Arguments(int argc, char** argv) { return {argv, argv + argc}; }

bool errorStreamIsTerminal() { return isatty(STDERR_FILENO) != 0; }

void limitMemory([[maybe_unused]] double gigabytes) {
#ifndef __SANITIZE_ADDRESS__  // it reserves terabytes without using them
  rlimit limit;
  if (getrlimit(RLIMIT_DATA, &limit) != 0) return;
  limit.rlim_cur = std::min(static_cast<rlim_t>(gigabytes * 1e9), limit.rlim_max);
  setrlimit(RLIMIT_DATA, &limit);
#endif
}

#endif

fs::path uniquePath(const fs::path& path) {
  std::error_code error;
  fs::path unique = fs::weakly_canonical(fs::absolute(path), error);
  if (error) unique = path;
#ifdef _WIN32
  std::wstring folded = unique.native();
  CharLowerW(folded.data());
  unique = folded;
#endif
  return unique;
}

}  // namespace host
