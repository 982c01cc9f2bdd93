# Flags for every file of the project.

if(MSVC)
  message(FATAL_ERROR "For Windows the library is cross-built with GCC: scripts/windows")
endif()

# The bytes of a frame must not depend on the flags of a parent project, nor on the processor: no fast arithmetic, not
# even in the start-up code that the linker would add for it, and no fused multiply-add.
add_compile_options(-fno-fast-math -ffp-contract=off)
add_link_options(-O2 -fno-fast-math -fno-unsafe-math-optimizations)  # -O2 takes back -Ofast
# Without errno the rounding conversions compile to single instructions; the values are the same.
add_compile_options(-fno-math-errno)
# With interprocedural register allocation GCC omits vzeroupper before a jump to a kernel's scalar form. SSE code that
# runs next, such as OpenCV's, then takes a third longer.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options(-fno-ipa-ra)
  # Objects keep what their operator new has put into their memory: see base/zeroed_memory.h.
  add_compile_options(-flifetime-dse=1)
endif()
# Mitigates undiscovered overflows. tests/hardening.sh checks the result.
if(NOT LUMVANE_SANITIZE AND NOT LUMVANE_SANITIZE_THREADS)
  add_compile_options(-fstack-protector-strong)
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64)$")
    add_compile_options(-fcf-protection)
  endif()
  if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")  # needs optimisation
    add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
  endif()
  if(MINGW)
    add_link_options(-fstack-protector-strong LINKER:--dynamicbase,--high-entropy-va,--nxcompat)
  else()
    add_link_options(LINKER:-z,relro,-z,now,-z,noexecstack)
  endif()
endif()
add_compile_options(-Wall -Wextra -Wpedantic)
if(LUMVANE_WARNINGS_AS_ERRORS)
  add_compile_options(-Werror)
endif()
if(LUMVANE_SANITIZE)
  add_compile_definitions(LUMVANE_SANITIZED)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
elseif(LUMVANE_SANITIZE_THREADS)
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
endif()
if(LUMVANE_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)  # coverage for the fuzzers
  add_compile_options(-fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/fuzz/ubsan_ignored.txt)
endif()
