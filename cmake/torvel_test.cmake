# torvel_test(NAME [DIALOGS] SOURCE... [LIBRARIES LIBRARY...])
#     A GoogleTest program and the test that runs it; its name ends in _test, and the target unit_tests builds it. With DIALOGS it shows some, as windows too. base is linked anyway. TORVEL_SOURCE_DIR is defined as the
#     narrow path of the source tree. Programs for Windows run under Wine by themselves.
# torvel_add_test(NAME COMMAND...)
#     Any other test. Names get this build's preset in front, so that one ctest run can cover several builds.
# torvel_fuzzer(NAME CORPUS FOLDER SOURCES SOURCE... [LIBRARIES LIBRARY...] [DICTIONARY FILE])
#     A libFuzzer program and the test that runs it for TORVEL_FUZZ_SECONDS, starting from the seeds in FOLDER.

find_path(TORVEL_GOOGLETEST_SOURCES googletest/CMakeLists.txt PATHS /usr/src/googletest NO_CMAKE_FIND_ROOT_PATH)
if(TORVEL_TESTS AND NOT TORVEL_GOOGLETEST_SOURCES)
  message(STATUS "GoogleTest's sources are not installed: the tests are not built.")
  set(TORVEL_TESTS OFF)
endif()
# What is tested is compiled as the preset says; the tests themselves run once and need no long optimising. Clang is twice as
# fast without any, GCC is not. Addresses are what goes wrong between a test and what it tests; the checks of its arithmetic
# take a fifth of its time.
set(TORVEL_TEST_OPTIONS $<$<CXX_COMPILER_ID:Clang>:-O0> $<$<CXX_COMPILER_ID:Clang>:-fno-sanitize=undefined>
                        $<$<AND:$<CXX_COMPILER_ID:GNU>,$<CONFIG:Release>>:-Og>)
if(TORVEL_TESTS)
  set(INSTALL_GTEST OFF CACHE INTERNAL "")
  set(gtest_force_shared_crt ON CACHE INTERNAL "")
  add_subdirectory("${TORVEL_GOOGLETEST_SOURCES}" "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
  foreach(library gtest gtest_main gmock)
    target_compile_options(${library} PRIVATE ${TORVEL_TEST_OPTIONS})
  endforeach()
endif()

# The headers that nearly every test includes, compiled once for all of them. The program is there for its compiled header
# alone.
set(TORVEL_TEST_HEADERS)
if(TORVEL_TESTS)
  set(TORVEL_TEST_HEADERS test_headers)
  file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/test_headers.cpp" CONTENT "int main() {}\n")
  add_executable(test_headers EXCLUDE_FROM_ALL "${CMAKE_BINARY_DIR}/test_headers.cpp")
  torvel_options(test_headers)
  target_compile_options(test_headers PRIVATE ${TORVEL_TEST_OPTIONS})
  target_link_libraries(test_headers PRIVATE GTest::gtest)
  target_precompile_headers(test_headers PRIVATE
    <algorithm> <cmath> <functional> <memory> <optional> <string> <string_view> <vector> <gtest/gtest.h>)
endif()
add_custom_target(unit_tests)
if(TORVEL_TESTS OR TORVEL_FUZZ)
  enable_testing()
endif()
set(fuzz_seconds 5)
if(DEFINED ENV{CI})
  set(fuzz_seconds 60)
endif()
set(TORVEL_FUZZ_SECONDS ${fuzz_seconds} CACHE STRING "How long each fuzzer runs as a test")

set(TORVEL_TEST_PREFIX "")
if(TORVEL_PRESET)
  set(TORVEL_TEST_PREFIX "${TORVEL_PRESET}.")
endif()

# No test opens windows on somebody's screen: Qt's are drawn into memory.
set(TORVEL_TEST_ENVIRONMENT)
if(TORVEL_QT)
  set(TORVEL_TEST_ENVIRONMENT
    QT_QPA_PLATFORM=offscreen "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/known_leaks.txt:print_suppressions=0")
endif()

function(torvel_add_test name)
  add_test(NAME "${TORVEL_TEST_PREFIX}${name}" COMMAND ${ARGN})
  set(environment ${TORVEL_TEST_ENVIRONMENT})
  if(WIN32)
    get_property(turn GLOBAL PROPERTY TORVEL_WINE_TURN)
    math(EXPR turn "0${turn} + 1")
    set_property(GLOBAL PROPERTY TORVEL_WINE_TURN ${turn})
    list(APPEND environment WINE_TURN=${turn})  # cmake/wine.sh
  endif()
  set_tests_properties("${TORVEL_TEST_PREFIX}${name}" PROPERTIES TIMEOUT 300 ENVIRONMENT "${environment}")
endfunction()

function(torvel_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "DIALOGS" "" "LIBRARIES")
  add_executable(${name} EXCLUDE_FROM_ALL ${arg_UNPARSED_ARGUMENTS})
  add_dependencies(unit_tests ${name})
  torvel_options(${name})
  # EXPECT_EQ and its like expand into an if with an else, also behind an if without braces.
  target_compile_options(${name} PRIVATE ${TORVEL_TEST_OPTIONS} -Wno-dangling-else)
  target_compile_definitions(${name} PRIVATE "TORVEL_SOURCE_DIR=\"${PROJECT_SOURCE_DIR}\"")
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} base GTest::gmock GTest::gtest_main)
  if(arg_DIALOGS AND TARGET torvelqt)
    add_dependencies(${name} torvelqt)  # loaded by name
    if(TORVEL_SANITIZE)
      # The leak checker of GCC 12 crashes over the thread storage of libraries that are loaded later.
      target_link_options(${name} PRIVATE LINKER:--no-as-needed "$<TARGET_FILE:Qt6::Widgets>" LINKER:--as-needed)
    endif()
  endif()
  if(TORVEL_TEST_HEADERS)
    target_precompile_headers(${name} REUSE_FROM ${TORVEL_TEST_HEADERS})
  endif()
  torvel_add_test(${name} ${name})
endfunction()

function(torvel_fuzzer name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "CORPUS;DICTIONARY" "SOURCES;LIBRARIES")
  cmake_path(ABSOLUTE_PATH arg_CORPUS BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" NORMALIZE)
  add_executable(${name} ${arg_SOURCES})
  torvel_options(${name})
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} base)
  # What the fuzzer finds goes to the first folder; the seeds in the source tree are only read.
  set(found "${CMAKE_CURRENT_BINARY_DIR}/${name}_found")
  file(MAKE_DIRECTORY "${found}")
  set(dictionary)
  if(arg_DICTIONARY)
    cmake_path(ABSOLUTE_PATH arg_DICTIONARY BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" NORMALIZE)
    set(dictionary "-dict=${arg_DICTIONARY}")
  endif()
  # Always the same row of inputs, so that a test that fails can be run again; runs by hand take another seed.
  torvel_add_test(${name} ${name} -seed=1 -max_total_time=${TORVEL_FUZZ_SECONDS} -timeout=10 -rss_limit_mb=4096
                  "-artifact_prefix=${CMAKE_CURRENT_BINARY_DIR}/${name}_" ${dictionary} "${found}" "${arg_CORPUS}")
  # The longest begin first, so that none is left running alone.
  set_tests_properties("${TORVEL_TEST_PREFIX}${name}" PROPERTIES COST ${TORVEL_FUZZ_SECONDS})
endfunction()
