include(CMakePackageConfigHelpers)

# Components: runtime, development, tools (tools/inspect), base_parser. cmake --install takes one by --component.
target_include_directories(vyr-atsc30-parser PUBLIC $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/vyr-atsc30-parser>)
if(VYR_BASE_PARSER STREQUAL "bundled")
  install(TARGETS vyr-parser EXPORT vyr-atsc30-parser
    LIBRARY COMPONENT base_parser NAMELINK_SKIP ARCHIVE COMPONENT development)
endif()
install(TARGETS vyr-atsc30-parser EXPORT vyr-atsc30-parser
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development ARCHIVE COMPONENT development)
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)
install(DIRECTORY inc/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vyr-atsc30-parser FILES_MATCHING PATTERN "*.h")

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vyr-atsc30-parser)
install(EXPORT vyr-atsc30-parser NAMESPACE vyr:: DESTINATION ${package_dir} FILE vyr-atsc30-parser-targets.cmake)
configure_package_config_file(cmake/vyr-atsc30-parser-config.cmake.in vyr-atsc30-parser-config.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(vyr-atsc30-parser-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/vyr-atsc30-parser-config.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/vyr-atsc30-parser-config-version.cmake
  DESTINATION ${package_dir})

# Found by its own place, unless the folders are absolute: then it stays where it was installed.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(VYR_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
else()
  file(RELATIVE_PATH VYR_PC_PREFIX "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
  set(VYR_PC_PREFIX "\${pcfiledir}/${VYR_PC_PREFIX}")
endif()
foreach(dir LIBDIR INCLUDEDIR)
  set(VYR_PC_${dir} "${CMAKE_INSTALL_${dir}}")
  if(NOT IS_ABSOLUTE "${VYR_PC_${dir}}")
    string(PREPEND VYR_PC_${dir} "\${prefix}/")
  endif()
endforeach()
list(TRANSFORM vyr_standard_library PREPEND " -D" OUTPUT_VARIABLE VYR_PC_DEFINITIONS)
list(JOIN VYR_PC_DEFINITIONS "" VYR_PC_DEFINITIONS)
# A program needs nothing of libxml2 and zlib to build against the shared library, their headers included.
if(vyr_library_type STREQUAL "STATIC")
  set(VYR_PC_REQUIRES "Requires.private: libxml-2.0 zlib")
endif()
configure_file(cmake/vyr-atsc30-parser.pc.in vyr-atsc30-parser.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vyr-atsc30-parser.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The licence is the owner's to choose; its text goes into this file.
set(vyr_license ${CMAKE_CURRENT_SOURCE_DIR}/LICENSE)
if(EXISTS "${vyr_license}")
  install(FILES ${vyr_license} DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime)
else()
  set(vyr_license)
  message(STATUS "No file LICENSE: what is installed says nothing of a licence")
endif()
