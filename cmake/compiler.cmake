# What every target of the project is compiled with.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # Optimised, this version warns of overlaps and overflows inside its own std::string where there are none.
  add_compile_options(-Wno-restrict -Wno-stringop-overflow -Wno-stringop-overread -Wno-array-bounds)
endif()

if(VARNE_SANITIZE)
  add_compile_options(-fsanitize=${VARNE_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${VARNE_SANITIZE})
endif()

if(VARNE_FUZZ)
  # All code is measured, only the targets get the fuzzer's own main function. Warnings are errors in the builds
  # with GCC; another compiler's own ones only inform.
  add_compile_options(-Wno-error -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -O1)
  add_link_options(-fsanitize=address,undefined)
endif()

find_program(VARNE_CCACHE ccache)
if(VARNE_CCACHE)
  # It keeps results of sources with a precompiled header only when it may trust the times of headers.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
    ${VARNE_CCACHE})
endif()

# A faster linker where there is one; the result is the same.
find_program(VARNE_LLD ld.lld)
if(VARNE_LLD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_link_options(-fuse-ld=lld)
endif()
