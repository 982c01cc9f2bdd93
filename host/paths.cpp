#include "host/paths.h"

#include <system_error>

#include "host/fault.h"

namespace host {

std::filesystem::path toPath(const std::string& name) { return std::u8string(name.begin(), name.end()); }

std::string toName(const std::filesystem::path& path) {
  const std::u8string name = path.u8string();
  return {name.begin(), name.end()};
}

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
