# One folder is one target. A room's headers are reachable as "room/x.h" only for the rooms that name it under
# DEPENDS (directly or through another room), because each room has an include root of its own that holds nothing
# but a link to its folder: an include that runs against the arrows does not compile.

# varne_room(NAME [QT] [DEPENDS room...] [LIBRARIES target...])
#   QT for rooms that link the window system, directly or through another room.
#   Makes the library varne_NAME of all .cpp files in and below the current folder but main.cpp, which belongs to a
#   program.
function(varne_room name)
  cmake_parse_arguments(ROOM "" "" "DEPENDS;LIBRARIES" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS *.cpp)
  list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
  set(include_root ${CMAKE_BINARY_DIR}/include/${name})
  file(MAKE_DIRECTORY ${include_root})
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${include_root}/${name} SYMBOLIC)
  list(TRANSFORM ROOM_DEPENDS PREPEND varne_)
  if(sources)
    add_library(varne_${name} STATIC ${sources})
    varne_precompile(varne_${name} core ${ROOM_UNPARSED_ARGUMENTS})
    # Several sources make one piece to compile: half the time. A source that cannot share its piece says so in the
    # CMakeLists.txt of its room (SKIP_UNITY_BUILD_INCLUSION).
    set_target_properties(varne_${name} PROPERTIES UNITY_BUILD ${VARNE_UNITY} UNITY_BUILD_BATCH_SIZE 6)
    set(reach PUBLIC)
  else()
    add_library(varne_${name} INTERFACE)
    set(reach INTERFACE)
  endif()
  target_include_directories(varne_${name} ${reach} ${include_root})
  target_link_libraries(varne_${name} ${reach} ${ROOM_DEPENDS} ${ROOM_LIBRARIES})
endfunction()

# varne_program(TARGET OUTPUT_NAME MAIN [DEPENDS room...] [LIBRARIES target...])
#   Makes an executable of one main file; everything but main lives in rooms, which tests link.
function(varne_program target output main)
  cmake_parse_arguments(PROGRAM "" "" "DEPENDS;LIBRARIES" ${ARGN})
  list(TRANSFORM PROGRAM_DEPENDS PREPEND varne_)
  add_executable(${target} ${main})
  set_target_properties(${target} PROPERTIES OUTPUT_NAME ${output})
  target_link_libraries(${target} PRIVATE ${PROGRAM_DEPENDS} ${PROGRAM_LIBRARIES})
endfunction()

# varne_test(ROOM [QT] [DEPENDS room...] [LIBRARIES target...])
#   Makes test_ROOM of all .cpp files in tests/ROOM and gives its cases to ctest.
function(varne_test room)
  cmake_parse_arguments(TEST "" "" "DEPENDS;LIBRARIES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${room}/*.cpp)
  if(NOT sources)
    return()
  endif()
  list(TRANSFORM TEST_DEPENDS PREPEND varne_)
  add_executable(test_${room} ${sources})
  varne_precompile(test_${room} test ${TEST_UNPARSED_ARGUMENTS})
  target_include_directories(test_${room} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(test_${room} PRIVATE ${TEST_DEPENDS} ${TEST_LIBRARIES} GTest::gmock_main)
  set(environment "QT_QPA_PLATFORM=offscreen")
  if(VARNE_SANITIZE MATCHES "thread") # without windows
    set(environment "TSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/cmake/tsan.supp")
  endif()
  gtest_discover_tests(test_${room} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT 300 ENVIRONMENT "${environment}")
endfunction()
