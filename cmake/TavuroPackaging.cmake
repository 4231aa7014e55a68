# Debian packages of an installed build, made with `cpack -G DEB` in the
# build directory: one package per install component.
#
#   libtavurocommon<major>  the shared library (a build with BUILD_SHARED_LIBS)
#   libtavurocommon-dev     headers, CMake package, pkg-config file, and the
#                           static library or the shared library's link
#   tavuro                  the command-line tool, its manual page, its bash
#                           completion and the sample resources
#
# The runtime package is named after the SONAME's major version, so that
# hosts built against two majors can have both installed.
set(TAVURO_PACKAGE_MAINTAINER "TavuroCommon maintainers <tavurocommon@localhost>"
  CACHE STRING "Maintainer field of the Debian packages")

set(CPACK_PACKAGE_NAME "tavurocommon")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGING_INSTALL_PREFIX "/usr")
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${TAVURO_PACKAGE_MAINTAINER}")
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
find_program(TAVURO_DPKG_SHLIBDEPS dpkg-shlibdeps)
if(TAVURO_DPKG_SHLIBDEPS)
  # Depends: lines for the C and C++ runtimes, from what the files link.
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
endif()

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME "libtavurocommon${PROJECT_VERSION_MAJOR}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
  "${PROJECT_DESCRIPTION}: shared library\nThe library that capture packages and host applications link at run time.")
set(CPACK_DEBIAN_DEV_PACKAGE_NAME "libtavurocommon-dev")
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEV_DESCRIPTION
  "${PROJECT_DESCRIPTION}: development files\nThe public headers, the CMake package (find_package(TavuroCommon)) and the pkg-config file.")
set(CPACK_DEBIAN_TOOL_PACKAGE_NAME "tavuro")
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION utils)
set(CPACK_COMPONENT_TOOL_DESCRIPTION
  "${PROJECT_DESCRIPTION}: the tavuro tool\nChecks an integration: configuration files, tokens, error codes, date fields and JSON answers as the library sees them.")

if(BUILD_SHARED_LIBS)
  set(CPACK_COMPONENTS_ALL runtime dev)
  set(CPACK_COMPONENT_DEV_DEPENDS runtime)
else()
  set(CPACK_COMPONENTS_ALL dev)
endif()
if(TAVURO_BUILD_TOOLS)
  list(APPEND CPACK_COMPONENTS_ALL tool)
endif()

include(CPack)
