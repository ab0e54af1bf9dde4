set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# No path of the building machine ends up in what is shipped.
add_compile_options("-ffile-prefix-map=${CMAKE_SOURCE_DIR}/=")

if(VYR_SANITIZE)
  add_compile_options(-fsanitize=${VYR_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
  add_link_options(-fsanitize=${VYR_SANITIZE})
endif()
if(VYR_LIBFUZZER)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

function(vyr_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
  if(VYR_DEVELOPER_MODE)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
