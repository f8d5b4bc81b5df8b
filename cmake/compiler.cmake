# What every target of the project is compiled with.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror)

if(VARNE_SANITIZE)
  add_compile_options(-fsanitize=${VARNE_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${VARNE_SANITIZE})
endif()

find_program(VARNE_CCACHE ccache)
if(VARNE_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${VARNE_CCACHE})
endif()

# A faster linker where there is one; the result is the same.
find_program(VARNE_LLD ld.lld)
if(VARNE_LLD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_link_options(-fuse-ld=lld)
endif()
