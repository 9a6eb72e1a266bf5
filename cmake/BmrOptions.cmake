# Options that every target of our own code shares. Warnings are errors in the presets, where the compilers are known:
# another one may have others, and somebody who only builds can do nothing about them.
add_library(bmr_options INTERFACE)
target_compile_options(bmr_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wnon-virtual-dtor -Woverloaded-virtual)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # g++ 12 at -O2 sees a variant's index as a string's address when a Result goes out of scope.
  # At -O3 it sees texts that are joined to a short one overlap.
  target_compile_options(bmr_options INTERFACE -Wno-free-nonheap-object -Wno-restrict)
endif()

if(BMR_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

find_program(BMR_CCACHE ccache)
if(BMR_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER
    ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1
    "CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime" ${BMR_CCACHE})
endif()

find_program(BMR_MOLD mold)
if(BMR_MOLD)
  add_link_options(-fuse-ld=mold)
endif()
