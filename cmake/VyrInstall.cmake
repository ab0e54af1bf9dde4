include(CMakePackageConfigHelpers)

install(TARGETS vyr-atsc30-parser EXPORT vyr-atsc30-parser)
install(DIRECTORY inc/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vyr-atsc30-parser FILES_MATCHING PATTERN "*.h")

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vyr-atsc30-parser)
install(EXPORT vyr-atsc30-parser NAMESPACE vyr:: DESTINATION ${package_dir} FILE vyr-atsc30-parser-targets.cmake)
configure_package_config_file(cmake/vyr-atsc30-parser-config.cmake.in vyr-atsc30-parser-config.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(vyr-atsc30-parser-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/vyr-atsc30-parser-config.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/vyr-atsc30-parser-config-version.cmake
  DESTINATION ${package_dir})

file(RELATIVE_PATH VYR_PC_PREFIX "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
configure_file(cmake/vyr-atsc30-parser.pc.in vyr-atsc30-parser.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vyr-atsc30-parser.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
