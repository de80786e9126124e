# Settings that hold for the whole tree: options, output folders, run paths, sanitizers, third-party headers.

option(TORVEL_SANITIZE "Build with the address and undefined-behaviour sanitizers" OFF)
option(TORVEL_FUZZ "Build the fuzzers (clang only)" OFF)
option(TORVEL_TESTS "Build the tests where GoogleTest's sources are installed" ON)
option(TORVEL_CHECK_ONCE "Do what one build of several is enough for: check the sources, and saved drawings with an auditor" OFF)
set(TORVEL_PRESET "" CACHE STRING "Name put before the names of this build's tests")

find_program(TORVEL_CCACHE ccache)
if(TORVEL_CCACHE)
  # It takes no results of a precompiled header without being told that the header's macros do not change. What a source
  # includes it learns from the compiler, instead of preprocessing each source once more before.
  set(CMAKE_CXX_COMPILER_LAUNCHER
      "${CMAKE_COMMAND}" -E env CCACHE_SLOPPINESS=pch_defines,time_macros CCACHE_DEPEND=1 "${TORVEL_CCACHE}")
endif()

# Programs and shared libraries lie side by side, so that each finds the others by its own folder.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_BUILD_RPATH "$ORIGIN")
set(CMAKE_INSTALL_RPATH "$ORIGIN")
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
# Line numbers are what the sanitizers' reports need; the names of variables would take as long again to compile.
set(CMAKE_CXX_FLAGS_DEBUG "-Og -g1")

if(TORVEL_SANITIZE)
  set(sanitizers address,undefined)
  if(TORVEL_FUZZ)
    string(APPEND sanitizers ",fuzzer-no-link")
  endif()
  add_compile_options(-fsanitize=${sanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  # Host and module each have their own description of the interfaces' types, which these two checks take for an error.
  add_compile_options(-fno-sanitize=vptr $<$<CXX_COMPILER_ID:Clang>:-fno-sanitize=function>)
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
  add_link_options(-fsanitize=${sanitizers})
endif()

# Header-only libraries: parts of Boost, and what pictures are painted with and fonts read. The cross compiler must not see
# the other headers of the native include folder, so it gets a folder that holds links to these alone.
add_library(torvel_boost INTERFACE)
add_library(torvel_pictures INTERFACE)
if(CMAKE_CROSSCOMPILING)
  file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/include")
  foreach(header boost/format.hpp agg2/agg_basics.h stb/stb_truetype.h)
    cmake_path(GET header PARENT_PATH folder)
    find_path(TORVEL_HEADERS_${folder} ${header} PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    file(CREATE_LINK "${TORVEL_HEADERS_${folder}}/${folder}" "${CMAKE_BINARY_DIR}/include/${folder}" SYMBOLIC)
  endforeach()
  target_include_directories(torvel_boost SYSTEM INTERFACE "$<BUILD_INTERFACE:${CMAKE_BINARY_DIR}/include>")
  target_include_directories(torvel_pictures SYSTEM INTERFACE "${CMAKE_BINARY_DIR}/include")
endif()

# zlib, which pictures are packed by; on Windows without a library file of its own.
if(WIN32)
  find_library(TORVEL_ZLIB libz.a REQUIRED)
else()
  find_library(TORVEL_ZLIB z REQUIRED)
endif()
target_link_libraries(torvel_pictures INTERFACE "${TORVEL_ZLIB}")

# What Linux shows windows with. Everything else is built without it too.
if(NOT WIN32)
  find_path(TORVEL_QT QtWidgets/QWidget PATH_SUFFIXES qt6)
  if(TORVEL_QT)
    find_package(Qt6 REQUIRED COMPONENTS Widgets)
  else()
    message(STATUS "Qt 6 is not installed: there will be no windows.")
  endif()
endif()

# What knows the scripts whose letters join, or run to the left.
if(NOT WIN32)
  find_path(TORVEL_HARFBUZZ_INCLUDE hb-ot.h PATH_SUFFIXES harfbuzz)
  find_library(TORVEL_HARFBUZZ harfbuzz)
  find_path(TORVEL_FRIBIDI_INCLUDE fribidi.h PATH_SUFFIXES fribidi)
  find_library(TORVEL_FRIBIDI fribidi)
  if(NOT (TORVEL_HARFBUZZ_INCLUDE AND TORVEL_HARFBUZZ AND TORVEL_FRIBIDI_INCLUDE AND TORVEL_FRIBIDI))
    message(STATUS "HarfBuzz or FriBidi is not installed: letters that join will be drawn one by one.")
  endif()
endif()

if(WIN32)
  # Library files carry no "lib" in front there.
  set(CMAKE_SHARED_LIBRARY_PREFIX "")
  set(CMAKE_SHARED_MODULE_PREFIX "")
  # The compiler's runtime is shared by all modules of the program and lies beside it.
  foreach(runtime libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(COMMAND "${CMAKE_CXX_COMPILER}" "-print-file-name=${runtime}"
                    OUTPUT_VARIABLE runtime_path OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT IS_ABSOLUTE "${runtime_path}")
      message(FATAL_ERROR "The compiler does not name its runtime library ${runtime}.")
    endif()
    file(COPY "${runtime_path}" DESTINATION "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
  endforeach()
endif()
