# Installs the library in two components: "library" for running, "dev" for building. OpenCV and Highway are used only
# internally: neither package file requires them.

include(CMakePackageConfigHelpers)

install(TARGETS lumvane EXPORT Lumvane
  RUNTIME COMPONENT library
  LIBRARY COMPONENT library NAMELINK_COMPONENT dev
  ARCHIVE COMPONENT dev
  FILE_SET HEADERS COMPONENT dev)

# find_package(Lumvane) provides Lumvane::lumvane.
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Lumvane)
install(EXPORT Lumvane FILE LumvaneConfig.cmake NAMESPACE Lumvane:: DESTINATION ${package_folder} COMPONENT dev)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/LumvaneConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/LumvaneConfigVersion.cmake DESTINATION ${package_folder} COMPONENT dev)

# lumvane.pc derives the prefix from its own location, so that an installed tree can be moved.
file(RELATIVE_PATH prefix_from_pc ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(${CMAKE_CURRENT_LIST_DIR}/lumvane.pc.in ${PROJECT_BINARY_DIR}/lumvane.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/lumvane.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)
