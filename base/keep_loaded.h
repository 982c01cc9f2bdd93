#pragma once

namespace Lumvane {

/// On Windows, keeps the library loaded from the first call on, even if the host unloads it: OpenCV is part of the DLL,
/// and its threads wait in that code for the next frame. Elsewhere OpenCV is a separate library, which stays loaded on
/// its own.
#ifdef _WIN32
void keepLoaded();
#else
inline void keepLoaded() {}
#endif

}  // namespace Lumvane
