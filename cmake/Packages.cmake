# Debian packages, one for each component; scripts/package makes them.

set(packages_library liblumvane${PROJECT_VERSION_MAJOR})
set(packages_dev liblumvane-dev)
set(packages_host lumvane-host)
set(packages_plugins frei0r-plugins-lumvane)
set(packages_python python3-lumvane)

if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")  # elsewhere pip installs it
  install(DIRECTORY python/lumvane DESTINATION lib/python3/dist-packages COMPONENT python
    FILES_MATCHING PATTERN *.py PATTERN py.typed PATTERN __pycache__ EXCLUDE)
endif()

get_cmake_property(CPACK_COMPONENTS_ALL COMPONENTS)
list(REMOVE_ITEM CPACK_COMPONENTS_ALL Unspecified)  # of projects that are taken in
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${packages_${component}})
  if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${packages_${component}} RENAME copyright
      COMPONENT ${component})
  endif()
  if(NOT component STREQUAL "library")
    set(CPACK_COMPONENT_${upper}_DEPENDS library)
  endif()
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The Lumvane authors <lumvane@users.noreply.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_HOST_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PLUGINS_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "python3, python3-numpy")
set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS "python3-distributed, python3-opencv")  # lumvane.farm
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "${PROJECT_DESCRIPTION}\nThe shared library.")
set(CPACK_COMPONENT_DEV_DESCRIPTION "${PROJECT_DESCRIPTION}\nWhat hosts build with: header, CMake package, pkg-config file.")
set(CPACK_COMPONENT_HOST_DESCRIPTION "Grades pictures and converts HDR video with the Lumvane effects\nA program for the command line.")
set(CPACK_COMPONENT_PLUGINS_DESCRIPTION "Lumvane colour effects for programs that load frei0r plug-ins")
set(CPACK_COMPONENT_PYTHON_DESCRIPTION "Lumvane colour effects on NumPy pictures\nWith lumvane.farm, for sequences of frames on many machines.")
# Needs of other packages are found by looking at what the files link to; the library's own file is found here.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
if(CMAKE_SYSROOT)
  foreach(folder /lib /usr/lib)
    list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_SYSROOT}${folder}/${CMAKE_LIBRARY_ARCHITECTURE})
  endforeach()
endif()
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
include(CPack)
