#pragma once

namespace Lumvane {

/// On Windows keeps the library in the process from the first call on, whatever the host unloads: OpenCV is a part of the
/// DLL there, and its threads wait in it for the next frame. Elsewhere OpenCV is a library of its own, which stays by
/// itself.
#ifdef _WIN32
void keepLoaded();
#else
inline void keepLoaded() {}
#endif

}  // namespace Lumvane
