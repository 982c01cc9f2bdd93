# Debian packages, one per component; built by scripts/package.

set(packages_library liblumvane${PROJECT_VERSION_MAJOR})
set(packages_dev liblumvane-dev)
set(packages_host lumvane-host)
set(packages_plugins frei0r-plugins-lumvane)
set(packages_gstreamer gstreamer1.0-lumvane)
set(packages_python python3-lumvane)
# Header-only code compiled into a package, whose licences must be included; available on Debian.
if(EXISTS /usr/share/doc/libhwy-dev/copyright AND EXISTS /usr/share/doc/libcli11-dev/copyright)
  set(inside_library libhwy-dev)
  set(inside_host libcli11-dev)
endif()

set(CPACK_PACKAGE_CONTACT "The Lumvane authors <lumvane@users.noreply.invalid>")
set(packaging ${PROJECT_BINARY_DIR}/packaging)
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  install(DIRECTORY python/lumvane DESTINATION lib/python3/dist-packages COMPONENT python  # elsewhere installed by pip
    FILES_MATCHING PATTERN *.py PATTERN py.typed PATTERN __pycache__ EXCLUDE)

  # Documentation and examples.
  set(doc ${CMAKE_INSTALL_DATADIR}/doc)
  install(FILES README.md SECURITY.md DESTINATION ${doc}/${packages_dev} COMPONENT dev)
  install(DIRECTORY docs DESTINATION ${doc}/${packages_dev} COMPONENT dev PATTERN windows-readme.txt EXCLUDE)
  install(FILES examples/host.c examples/runtime.c DESTINATION ${doc}/${packages_dev}/examples COMPONENT dev)
  if(TARGET frei0r_lumvane_lut)
    install(FILES docs/plugins.md DESTINATION ${doc}/${packages_plugins} COMPONENT plugins)
  endif()
  install(FILES python/README.md docs/farm.md DESTINATION ${doc}/${packages_python} COMPONENT python)
  install(FILES examples/grade.py DESTINATION ${doc}/${packages_python}/examples COMPONENT python)

  find_program(PYTHON3 python3 HINTS /usr/bin)
  if(PYTHON3)
    file(MAKE_DIRECTORY ${packaging})
    execute_process(
      COMMAND ${PYTHON3} scripts/debian-changelog CHANGELOG.md ${PROJECT_VERSION} ${CPACK_PACKAGE_CONTACT}
      COMMAND gzip -9n
      WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} OUTPUT_FILE ${packaging}/changelog.gz COMMAND_ERROR_IS_FATAL ANY)
  endif()
endif()

get_cmake_property(CPACK_COMPONENTS_ALL COMPONENTS)
list(REMOVE_ITEM CPACK_COMPONENTS_ALL Unspecified)  # from projects added by add_subdirectory
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${packages_${component}})
  if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    file(READ LICENSE copyright)
    foreach(package IN LISTS inside_${component})
      file(READ /usr/share/doc/${package}/copyright text)
      string(APPEND copyright "\n---- ${package}, parts of which are included:\n\n${text}")
    endforeach()
    file(WRITE ${packaging}/${component}/copyright "${copyright}")
    install(FILES ${packaging}/${component}/copyright DESTINATION ${doc}/${packages_${component}} COMPONENT ${component})
    if(PYTHON3)
      install(FILES ${packaging}/changelog.gz DESTINATION ${doc}/${packages_${component}} COMPONENT ${component})
    endif()
  endif()
  if(NOT component STREQUAL "library")
    set(CPACK_COMPONENT_${upper}_DEPENDS library)
  endif()
endforeach()

# The library's package triggers ldconfig. For each package with shared objects in /usr/lib CPack would generate scripts
# that call it, unless others are named; these do not exist, for which CPack prints a warning.
file(WRITE ${packaging}/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_PLUGINS_PACKAGE_CONTROL_EXTRA ${packaging}/none/postinst ${packaging}/none/postrm)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${packaging}/triggers ${CPACK_DEBIAN_PLUGINS_PACKAGE_CONTROL_EXTRA})

set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/python/postinst
  ${PROJECT_SOURCE_DIR}/cmake/python/prerm)
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_HOST_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PLUGINS_PACKAGE_SECTION video)
set(CPACK_DEBIAN_GSTREAMER_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "python3, python3-numpy")
set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS "python3-distributed, python3-opencv")  # lumvane.farm
# The first line of each is its synopsis.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(about "LUT grading, clarity, white balance and HDR to BT.709, reproducible to the\nbyte.")
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "per-frame colour effects for video editing hosts
${about} This is the shared library.")
set(CPACK_COMPONENT_DEV_DESCRIPTION "per-frame colour effects for video editing hosts - development files
${about} This is for building hosts: header, CMake package, pkg-config file,\ndocumentation and examples.")
set(CPACK_COMPONENT_HOST_DESCRIPTION "grade pictures and convert HDR video on the command line
${about} This is a program for single pictures, folders of them, and YUV4MPEG2\nvideo.")
set(CPACK_COMPONENT_PLUGINS_DESCRIPTION "Lumvane colour effects for programs that load frei0r plug-ins
LUT grading, clarity and white balance for video editors and FFmpeg, with\nthe same bytes as the library's own.")
set(CPACK_COMPONENT_GSTREAMER_DESCRIPTION "convert HDR video to BT.709 in GStreamer, with Lumvane
HLG and PQ of BT.2020, with the same bytes as the library's own.")
set(CPACK_COMPONENT_PYTHON_DESCRIPTION "Lumvane colour effects on NumPy pictures
${about} This is the Python package, with lumvane.farm for sequences of frames\non many machines.")
# Dependencies are derived from what the files link to; the library itself is found in this folder.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
if(CMAKE_SYSROOT)
  foreach(folder /lib /usr/lib)
    list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_SYSROOT}${folder}/${CMAKE_LIBRARY_ARCHITECTURE})
  endforeach()
endif()
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
include(CPack)
