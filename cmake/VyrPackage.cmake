# Packages of Debian, one for each component: cpack -G DEB, which scripts/package runs as it should be.
set(VYR_PACKAGE_MAINTAINER "The libvyr-atsc30-parser developers <maintainers@vyr.invalid>" CACHE STRING
  "Maintainer of the packages: whoever makes them sets it")
set(CPACK_DEBIAN_PACKAGE_RELEASE 1 CACHE STRING "Revision of the packages")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME libvyr-atsc30-parser)
set(CPACK_DEBIAN_PACKAGE_SOURCE libvyr-atsc30-parser)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${VYR_PACKAGE_MAINTAINER}")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_CURRENT_BINARY_DIR})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/packaging/debian.cmake)
set(CPACK_VYR_SOURCE_DIR ${CMAKE_CURRENT_SOURCE_DIR})
set(CPACK_VYR_LICENSE "${vyr_license}")
if(vyr_license)
  set(CPACK_RESOURCE_FILE_LICENSE ${vyr_license})
endif()

# One package: its component, name, section, the components that it needs in the same version, what it is.
set(CPACK_COMPONENTS_ALL)
function(vyr_package component name section depends description)
  string(TOUPPER ${component} component_upper)
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${component} PARENT_SCOPE)
  set(CPACK_COMPONENT_${component_upper}_DEPENDS "${depends}" PARENT_SCOPE)
  set(CPACK_COMPONENT_${component_upper}_DESCRIPTION "${description}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${component_upper}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${component_upper}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  if(section STREQUAL "libs")
    set(CPACK_DEBIAN_${component_upper}_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/packaging/triggers PARENT_SCOPE)
  endif()
endfunction()

set(base_parser)
if(VYR_BASE_PARSER STREQUAL "bundled" AND vyr_library_type STREQUAL "SHARED")
  set(base_parser base_parser)
  vyr_package(base_parser libvyr-parser1 libs "" "stand-in for the base parser library of receivers
The three functions that libvyr-atsc30-parser calls of the base parser library:
the one that assertions are told to, and two that print. A system that has
that library itself does without this package.")
endif()
set(runtime)
if(vyr_library_type STREQUAL "SHARED")
  set(runtime runtime)
  vyr_package(runtime libvyr-atsc30-parser${VYR_SOVERSION} libs "${base_parser}" "parser of ATSC 3.0 broadcast signalling
Parses low-level signalling tables, the service signalling of ROUTE with its
DASH manifests, MMT signalling messages and the electronic service guide, for
the middleware of television receivers.")
endif()
vyr_package(development libvyr-atsc30-parser-dev libdevel "${runtime}" "parser of ATSC 3.0 broadcast signalling - development files
Headers, CMake package and pkg-config file to build programs with
libvyr-atsc30-parser, which parses the signalling of ATSC 3.0 broadcasts.")
if(vyr_library_type STREQUAL "STATIC")
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libxml2-dev, zlib1g-dev")
endif()
if(VYR_TOOLS)
  vyr_package(tools vyr-atsc30-inspect utils "${runtime}" "shows the ATSC 3.0 signalling in captures and networks
Tells which services a broadcast announces, what their signalling, guide and
alerts say, what is delivered and how much of it, what changes, what is wrong,
and whether each service plays. It reads packet captures, raw files and live
networks, and reports as text, JSON or a page for the browser.")
endif()
include(CPack)
