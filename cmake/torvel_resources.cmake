# torvel_resources(TARGET FILE.rc... [DEPENDS FILE...])
#
# Compiles resource scripts (UTF-8) into TARGET: on Windows into its resource section, elsewhere embedded as they are
# and found through a note in the module (see base/resources.h). Both platforms get the same compiled bytes.
# DEPENDS names the files that the scripts take in as they are.
# The scripts include <winres.h>, which is the project's own short one in base/rc. TORVEL_VERSION and
# TORVEL_VERSION_NUMBERS are the project's version as a text and as four numbers.

find_program(TORVEL_LLVM_RC NAMES llvm-rc llvm-rc-14 llvm-rc-15 llvm-rc-16 llvm-rc-17 llvm-rc-18 llvm-rc-19)

string(REPLACE "." "," TORVEL_VERSION_NUMBERS "${PROJECT_VERSION}.0")

function(torvel_resources target)
  if(NOT TORVEL_LLVM_RC)
    message(FATAL_ERROR "llvm-rc is needed to compile the resources (Debian's package llvm).")
  endif()
  cmake_parse_arguments(PARSE_ARGV 1 resources "" "" "DEPENDS")
  set(compiled)
  foreach(script IN LISTS resources_UNPARSED_ARGUMENTS)
    cmake_path(ABSOLUTE_PATH script BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" NORMALIZE)
    cmake_path(GET script STEM name)
    cmake_path(GET script PARENT_PATH folder)
    set(stem "${CMAKE_CURRENT_BINARY_DIR}/${target}_${name}")
    # A failed llvm-rc leaves a truncated file behind, so the result takes its name only after success. Its input is
    # named without a folder: it would read the first letter of an absolute path as an option (/c... as /C).
    add_custom_command(
      OUTPUT "${stem}.res"
      COMMAND "${CMAKE_CXX_COMPILER}" -E -x c -DRC_INVOKED -MD -MF "${stem}.d" -MT "${stem}.res"
              -I "${folder}" -I "${PROJECT_SOURCE_DIR}/base/rc" -I "${PROJECT_SOURCE_DIR}"
              "-DTORVEL_VERSION=\"${PROJECT_VERSION}\"" "-DTORVEL_VERSION_NUMBERS=${TORVEL_VERSION_NUMBERS}"
              -o "${stem}.preprocessed.rc" "${script}"
      COMMAND "${TORVEL_LLVM_RC}" /no-preprocess /C 65001 /I "${folder}" /FO "${stem}.unchecked"
              "${target}_${name}.preprocessed.rc"
      COMMAND "${CMAKE_COMMAND}" -E rename "${stem}.unchecked" "${stem}.res"
      DEPFILE "${stem}.d"
      DEPENDS "${script}" ${resources_DEPENDS}
      WORKING_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}"
      COMMENT "Compiling resources ${name}.rc of ${target}"
      VERBATIM)
    list(APPEND compiled "${stem}.res")
  endforeach()

  if(WIN32)
    foreach(res IN LISTS compiled)
      set(object "${res}.o")
      add_custom_command(
        OUTPUT "${object}"
        COMMAND "${CMAKE_RC_COMPILER}" -J res -O coff -i "${res}" -o "${object}"
        DEPENDS "${res}"
        VERBATIM)
      set_source_files_properties("${object}" PROPERTIES EXTERNAL_OBJECT ON GENERATED ON)
      target_sources(${target} PRIVATE "${object}")
    endforeach()
  else()
    set(incbins "")
    foreach(res IN LISTS compiled)
      string(APPEND incbins "    .incbin \\\"${res}\\\"\\n\"\n    \"")
    endforeach()
    set(TORVEL_RESOURCE_INCBINS "${incbins}")
    set(source "${CMAKE_CURRENT_BINARY_DIR}/${target}_embedded_resources.cpp")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/embedded_resources.cpp.in" "${source}" @ONLY)
    set_source_files_properties("${source}" PROPERTIES OBJECT_DEPENDS "${compiled}")
    target_sources(${target} PRIVATE "${source}")
  endif()
endfunction()
