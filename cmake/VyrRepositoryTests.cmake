# Tests of the repository itself: headers, includes, exported symbols, the binary interface, the installed tree.

# What a header needs is the same to every sanitizer.
if(NOT VYR_SANITIZE)
  file(GLOB_RECURSE headers RELATIVE ${PROJECT_SOURCE_DIR}/inc CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/inc/*.h)
  set(header_sources)
  foreach(header IN LISTS headers)
    string(MAKE_C_IDENTIFIER ${header} name)
    set(source ${CMAKE_CURRENT_BINARY_DIR}/headers/${name}.cpp)
    file(CONFIGURE OUTPUT ${source} CONTENT "#include \"${header}\"\n#include \"${header}\"\n")
    list(APPEND header_sources ${source})
  endforeach()
  add_library(vyr-headers-alone OBJECT ${header_sources})
  target_include_directories(vyr-headers-alone PRIVATE ${PROJECT_SOURCE_DIR}/inc)
  target_compile_definitions(vyr-headers-alone PRIVATE ${vyr_standard_library})
  vyr_warnings(vyr-headers-alone)
endif()

add_test(NAME includes COMMAND ${PROJECT_SOURCE_DIR}/scripts/check-includes)
find_program(doxygen doxygen)
if(doxygen)
  # Every public declaration is documented, and every link leads somewhere: a warning fails.
  file(MAKE_DIRECTORY ${PROJECT_SOURCE_DIR}/build)
  add_test(NAME documents COMMAND ${doxygen} docs/Doxyfile WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
endif()
if(NOT VYR_SANITIZE AND vyr_library_type STREQUAL "SHARED")
  add_test(NAME exported-symbols
    COMMAND ${PROJECT_SOURCE_DIR}/scripts/check-symbols $<TARGET_FILE:vyr-atsc30-parser>)
  add_test(NAME installed-tree
    COMMAND ${PROJECT_SOURCE_DIR}/scripts/check-install ${PROJECT_BINARY_DIR} ${CMAKE_CXX_COMPILER})
  add_test(NAME installed-variants COMMAND ${PROJECT_SOURCE_DIR}/scripts/check-builds ${CMAKE_CXX_COMPILER})
  set_tests_properties(installed-tree installed-variants PROPERTIES LABELS fresh)  # scripts/test knows when
  # The description is by libabigail 2.2 of what GCC 12 makes for this architecture: by the tools of Debian 12.
  find_program(abidiff abidiff)
  if(abidiff AND CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU"
      AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    add_test(NAME abi COMMAND ${CMAKE_COMMAND} -E env CXX=${CMAKE_CXX_COMPILER} ${PROJECT_SOURCE_DIR}/scripts/check-abi)
    set_tests_properties(abi PROPERTIES LABELS fresh PROCESSORS 2 TIMEOUT 900)
  endif()
endif()
