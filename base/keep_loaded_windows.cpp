#include <windows.h>

#include "base/keep_loaded.h"

namespace Lumvane {

void keepLoaded() {
  HMODULE library;
  const auto* const inside = reinterpret_cast<const wchar_t*>(&keepLoaded);
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, inside, &library);
}

}  // namespace Lumvane
