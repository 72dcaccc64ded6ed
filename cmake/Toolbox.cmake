# What every room of the house is built with: warnings, sanitizers, compiler cache, fast linker.

set(ZENTROVA_SANITIZE "" CACHE STRING "comma list for -fsanitize=, empty for none")
option(ZENTROVA_FUZZ "build the fuzzers (needs Clang): tools/fuzz.sh" OFF)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  # Paths below the checkout are hashed as relative ones: every clone and every build folder shares its objects.
  # A precompiled header is found in the cache only if its macros and times are left to the compiler.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1
    CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE_PROGRAM})
  set(pch_options $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
endif()

if(WIN32)
  add_link_options(-static)  # nothing of the compiler's has to lie beside what is built
else()
  find_program(LLD_PROGRAM ld.lld)
  if(LLD_PROGRAM)
    add_link_options(-fuse-ld=lld)
  endif()
  add_link_options(-Wl,--disable-new-dtags)
  find_package(PkgConfig REQUIRED)
endif()

if(ZENTROVA_SANITIZE)
  add_compile_options(-fsanitize=${ZENTROVA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=${ZENTROVA_SANITIZE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")  # sees values without a beginning in its own regular expressions
    add_compile_options(-Wno-error=maybe-uninitialized)
  endif()
endif()

if(ZENTROVA_FUZZ)  # every room tells the fuzzer where it has been
  add_compile_options(-g -O1 -fno-omit-frame-pointer -fsanitize=fuzzer-no-link,address,undefined
    -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()

find_package(Threads REQUIRED)

add_library(zv_options INTERFACE)
target_compile_options(zv_options INTERFACE -Wall -Wextra -Wconversion -Wno-sign-conversion)
if(NOT ZENTROVA_FUZZ)  # another compiler has other opinions
  target_compile_options(zv_options INTERFACE -Werror)
endif()
target_include_directories(zv_options INTERFACE ${PROJECT_SOURCE_DIR})
target_link_libraries(zv_options INTERFACE Threads::Threads)

# What most sources include, compiled once a target. Every source still names what it needs: the Windows build has no
# precompiled headers and would miss it.
set(pch_standard <algorithm> <array> <cmath> <cstdint> <cstdio> <filesystem> <functional> <memory> <string> <string_view>
  <utility> <vector>)
function(zv_precompiled target)
  target_precompile_headers(${target} PRIVATE ${pch_standard} ${ARGN})
  target_compile_options(${target} PRIVATE ${pch_options})
endfunction()

# zv_room(NAME [STATIC|SHARED] DEPENDS target...): a library of all sources of the current folder.
function(zv_room name kind)
  cmake_parse_arguments(ROOM "" "" "DEPENDS" ${ARGN})
  file(GLOB_RECURSE room_sources CONFIGURE_DEPENDS *.cpp *.h)
  if(NOT room_sources)
    file(WRITE ${CMAKE_BINARY_DIR}/empty_room.cpp "")
    set(room_sources ${CMAKE_BINARY_DIR}/empty_room.cpp)
  endif()
  add_library(${name} ${kind} ${room_sources})
  set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
  target_link_libraries(${name} PUBLIC zv_options ${ROOM_DEPENDS})
  zv_precompiled(${name})
endfunction()

# zv_test(NAME [OPTIMIZED] [SLOW] [SHARDS count] [COST seconds] [EXCEPT filter] DEPENDS target...): one executable of all
# test sources of tests/NAME, known to ctest. OPTIMIZED: what the test itself computes takes longer than its compilation.
# SLOW: tests with Slow in their names are an entry of their own, NAME_slow, which "./test fast" leaves out.
# SHARDS: so many entries of about equal length. COST: ctest starts the longest first. EXCEPT: tests another entry runs.
function(zv_test name)
  cmake_parse_arguments(TEST "OPTIMIZED;SLOW" "SHARDS;COST;EXCEPT" "DEPENDS" ${ARGN})
  file(GLOB_RECURSE test_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.h)
  if(NOT test_sources)
    return()
  endif()
  add_executable(test_${name} ${test_sources} ${PROJECT_SOURCE_DIR}/tests/support/places.cpp)
  target_link_libraries(test_${name} PRIVATE zv_options ${TEST_DEPENDS} GTest::gmock GTest::gtest_main)
  zv_precompiled(test_${name} <fstream> <map> <random> <gtest/gtest.h>)
  if(ZENTROVA_SANITIZE)  # all of it in one entry
    add_test(NAME ${name} COMMAND test_${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT 600)
    if(ZENTROVA_SANITIZE STREQUAL "thread")  # g++ 12 sees overruns where texts are joined and there are none
      target_compile_options(test_${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-array-bounds>
        $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict> $<$<CXX_COMPILER_ID:GNU>:-Wno-stringop-overflow>)
    endif()
    return()
  endif()
  if(NOT TEST_OPTIMIZED)  # tests are compiled more often than they run
    target_compile_options(test_${name} PRIVATE $<$<CONFIG:Debug>:-O0>)
  endif()
  set(entries ${name})
  if(TEST_SHARDS)
    set(entries "")
    math(EXPR last "${TEST_SHARDS} - 1")
    foreach(shard RANGE ${last})
      list(APPEND entries ${name}_${shard})
    endforeach()
  endif()
  foreach(entry ${entries})
    add_test(NAME ${entry} COMMAND test_${name} --gtest_filter=-*Slow*:${TEST_EXCEPT})
    set_tests_properties(${entry} PROPERTIES TIMEOUT 600 COST "${TEST_COST}")
    if(TEST_SHARDS)
      string(REGEX REPLACE ".*_" "" shard ${entry})
      set_tests_properties(${entry} PROPERTIES ENVIRONMENT "GTEST_TOTAL_SHARDS=${TEST_SHARDS};GTEST_SHARD_INDEX=${shard}")
    endif()
  endforeach()
  if(TEST_SLOW)
    add_test(NAME ${name}_slow COMMAND test_${name} --gtest_filter=*Slow*)
    set_tests_properties(${name}_slow PROPERTIES TIMEOUT 600 LABELS slow)
  endif()
endfunction()
