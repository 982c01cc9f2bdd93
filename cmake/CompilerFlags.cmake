# Flags for every file of the project.

if(MSVC)
  message(FATAL_ERROR "For Windows the library is cross-built with GCC: scripts/windows")
endif()

# The bytes of a frame must not depend on the processor: no multiply and add may be fused.
add_compile_options(-ffp-contract=off)
# Without errno the rounding conversions are single instructions; their values are the same.
add_compile_options(-fno-math-errno)
# With what GCC knows of the registers that functions of the same file use, it leaves out vzeroupper ahead of a jump to a
# kernel's plain form. Older SIMD code that runs next, OpenCV's, then takes a third longer.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options(-fno-ipa-ra)
endif()
add_compile_options(-Wall -Wextra -Wpedantic)
if(LUMVANE_WARNINGS_AS_ERRORS)
  add_compile_options(-Werror)
endif()
if(LUMVANE_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
elseif(LUMVANE_SANITIZE_THREADS)
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
endif()
if(LUMVANE_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)  # tells the fuzzers which way an input takes
  add_compile_options(-fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/fuzz/ubsan_ignored.txt)
endif()
