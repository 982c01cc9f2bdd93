#include "host/paths.h"

#include <system_error>

#include "host/fault.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace host {

std::filesystem::path toPath(const std::string& name) { return std::u8string(name.begin(), name.end()); }

#ifdef _WIN32

std::string toName(const std::filesystem::path& path) {
  const std::wstring& wide = path.native();
  const auto units = static_cast<int>(wide.size());
  std::string name(size_t{3} * wide.size(), '\0');
  const int bytes = static_cast<int>(name.size());
  name.resize(
      static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, name.data(), bytes, nullptr, nullptr)));
  return name;
}

std::filesystem::path foldedCase(const std::filesystem::path& path) {
  std::wstring wide = path.native();
  CharLowerBuffW(wide.data(), static_cast<DWORD>(wide.size()));
  return wide;
}

#else

std::string toName(const std::filesystem::path& path) { return path.string(); }

std::filesystem::path foldedCase(const std::filesystem::path& path) { return path; }

#endif

std::u16string libraryPath(const std::string& name) {
  try {
    return toPath(name).u16string();
  } catch (const std::system_error&) {
    throw Fault(ExitCode::kInput, "'" + name + "' cannot be used: its name is no UTF-8");
  }
}

FILE* openFile(const std::filesystem::path& path, const char* mode) {
#ifdef _WIN32
  return _wfopen(path.c_str(), std::filesystem::path(mode).c_str());
#else
  return std::fopen(path.c_str(), mode);
#endif
}

}  // namespace host
