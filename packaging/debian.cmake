# Run by CPack after it has installed the components and before it packs them.
set(packages)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  list(APPEND packages ${component}=${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
endforeach()
execute_process(
  COMMAND ${CPACK_VYR_SOURCE_DIR}/packaging/stage "${CPACK_TEMPORARY_INSTALL_DIRECTORY}"
    "${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}" "${CPACK_DEBIAN_PACKAGE_MAINTAINER}" ${packages}
  COMMAND_ERROR_IS_FATAL ANY)
