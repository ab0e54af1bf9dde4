set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ${PROJECT_IS_TOP_LEVEL})

# No path of the building machine, and no time, ends up in what is shipped. A compiler cache that serves several
# clones tells the compiler paths from the build folder on.
add_compile_options("-ffile-prefix-map=${PROJECT_BINARY_DIR}=." "-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=")
file(RELATIVE_PATH vyr_up "${PROJECT_BINARY_DIR}" "${PROJECT_SOURCE_DIR}")
if(vyr_up)
  string(REGEX REPLACE "/$" "" vyr_up "${vyr_up}")
  add_compile_options("-ffile-prefix-map=${vyr_up}/=")
endif()
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(CMAKE_CXX_ARCHIVE_CREATE "<CMAKE_AR> qcD <TARGET> <LINK_FLAGS> <OBJECTS>")
set(CMAKE_CXX_ARCHIVE_APPEND "<CMAKE_AR> qD <TARGET> <LINK_FLAGS> <OBJECTS>")
set(CMAKE_CXX_ARCHIVE_FINISH "<CMAKE_RANLIB> -D <TARGET>")

include(CheckCXXSourceCompiles)
# Dates past 2038 on 32-bit machines; no public type depends on it. Libraries whose types do may be built otherwise:
# what speaks to them is compiled with vyr_time_of_libraries.
set(vyr_time_of_libraries)
check_cxx_source_compiles("#include <ctime>\nstatic_assert(sizeof(std::time_t) >= 8);\nint main() {}" VYR_HAS_WIDE_TIME)
if(NOT VYR_HAS_WIDE_TIME)
  add_compile_definitions(_TIME_BITS=64 _FILE_OFFSET_BITS=64)
  set(vyr_time_of_libraries -U_TIME_BITS)
endif()

# What platform/Api.h must know of the standard library this is built with.
check_cxx_source_compiles("#include <cstddef>\n#ifndef _LIBCPP_VERSION\n#error\n#endif\nint main() {}" VYR_HAS_LIBCXX)
check_cxx_source_compiles("#include <cstddef>\n#ifndef _GLIBCXX_DEBUG\n#error\n#endif\nint main() {}"
  VYR_HAS_DEBUG_CONTAINERS)
set(vyr_standard_library)
if(VYR_HAS_LIBCXX)
  list(APPEND vyr_standard_library VYR_LIBCXX)
endif()
if(VYR_HAS_DEBUG_CONTAINERS)
  list(APPEND vyr_standard_library VYR_DEBUG_CONTAINERS)
endif()

if(VYR_DEVELOPER_MODE)
  set(CMAKE_COMPILE_WARNING_AS_ERROR ON)
endif()

# A program is linked anew when a header of the library changed, not whenever its code did.
set(CMAKE_LINK_DEPENDS_NO_SHARED ${VYR_DEVELOPER_MODE})

if(VYR_SANITIZE)
  add_compile_options(-fsanitize=${VYR_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g1)
  add_link_options(-fsanitize=${VYR_SANITIZE})
endif()
if(VYR_LIBFUZZER)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

function(vyr_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
endfunction()

# Code that is never shipped: what compiles sooner, as the sanitizers make of a test ten times what it was.
function(vyr_test_code target)
  vyr_warnings(${target})
  target_compile_options(${target} PRIVATE -O0)
  if(VYR_LIBFUZZER)
    target_compile_options(${target} PRIVATE -fno-sanitize=fuzzer-no-link)
  endif()
endfunction()

# Those of its sources that a long time of the tests is spent in.
function(vyr_busy_code)
  set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS -O2)
endfunction()
