# The DLL: self-contained, statically linked, with version information.

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)  # programs find the DLL in their own folder
set_target_properties(lumvane PROPERTIES
  PREFIX ""
  IMPORT_PREFIX ""
  RUNTIME_OUTPUT_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
configure_file(${CMAKE_CURRENT_LIST_DIR}/version.rc.in ${PROJECT_BINARY_DIR}/version.rc @ONLY)
target_sources(lumvane PRIVATE ${PROJECT_BINARY_DIR}/version.rc)
target_sources(lumvane_objects PRIVATE base/keep_loaded_windows.cpp)
