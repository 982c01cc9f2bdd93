#include "host/library_path.h"

#include <filesystem>
#include <system_error>

#include "host/fault.h"

namespace host {

std::u16string libraryPath(const std::string& path) {
  try {
    return std::filesystem::path(path).u16string();
  } catch (const std::system_error&) {
    throw Fault(ExitCode::kInput, "'" + path + "' cannot be used: its name is no UTF-8");
  }
}

}  // namespace host
