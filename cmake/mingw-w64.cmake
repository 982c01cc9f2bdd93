# Toolchain for 64-bit Windows. LUMVANE_WINDOWS_LIBRARIES is the folder printed by scripts/windows-libraries.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_CROSSCOMPILING_EMULATOR /usr/lib/wine/wine64)

set(CMAKE_FIND_ROOT_PATH ${LUMVANE_WINDOWS_LIBRARIES} /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Links the compiler's run-time libraries statically and strips all symbols but the exports.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -s")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static -s")

# Windows aligns the stack to 16 bytes, but GCC stores 32-byte vectors there with aligned moves (GCC bug 54412): the
# assembler must turn all vector moves into unaligned ones.
set(CMAKE_C_FLAGS_INIT -Wa,-muse-unaligned-vector-move)
set(CMAKE_CXX_FLAGS_INIT -Wa,-muse-unaligned-vector-move)
