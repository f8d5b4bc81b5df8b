# Headers that most sources include are compiled once: the standard library's, and the test framework's for tests.
# A source still includes what it uses; this only saves time.
option(VARNE_PRECOMPILE "Precompile the headers of the libraries" ON)

# varne_precompile(TARGET core|test [QT]): one target of each kind makes the header, the others reuse it. Code that
# links the window system is compiled with -fPIC and needs a header of its own.
function(varne_precompile target kind)
  if(NOT VARNE_PRECOMPILE)
    return()
  endif()
  set(maker precompiled_${kind})
  if("QT" IN_LIST ARGN)
    string(APPEND maker _qt)
  endif()
  if(NOT TARGET ${maker})
    file(WRITE ${CMAKE_BINARY_DIR}/precompiled/${maker}.cpp "")
    add_library(${maker} OBJECT ${CMAKE_BINARY_DIR}/precompiled/${maker}.cpp)
    set(headers <algorithm> <array> <chrono> <cmath> <filesystem> <functional> <map> <memory> <optional> <ranges> <set>
      <span> <string> <string_view> <utility> <vector>)
    if(kind STREQUAL "test")
      list(APPEND headers <fstream> <sstream> <gmock/gmock.h> <gtest/gtest.h>)
      target_compile_options(${maker} PRIVATE -O0)
      target_link_libraries(${maker} PRIVATE GTest::gmock)
    endif()
    if("QT" IN_LIST ARGN)
      target_compile_options(${maker} PRIVATE -fPIC)
    endif()
    target_precompile_headers(${maker} PRIVATE ${headers})
  endif()
  target_precompile_headers(${target} REUSE_FROM ${maker})
endfunction()
