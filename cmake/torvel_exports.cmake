# torvel_exports(TARGET FILE.exports)
#
# Makes a shared library, a module or a program export exactly the names that FILE lists, one a line; `#` begins a
# comment. The functions need no attribute in the source. Call it after torvel_options.
function(torvel_exports target list_file)
  cmake_path(ABSOLUTE_PATH list_file BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" NORMALIZE)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${list_file}")
  file(STRINGS "${list_file}" lines)
  set(names)
  foreach(line IN LISTS lines)
    string(REGEX REPLACE "#.*" "" line "${line}")
    string(STRIP "${line}" line)
    if(line)
      list(APPEND names "${line}")
    endif()
  endforeach()

  get_target_property(type ${target} TYPE)
  set(stem "${CMAKE_CURRENT_BINARY_DIR}/${target}")
  if(WIN32)
    string(JOIN "\n    " text ${names})
    set(file "${stem}.def")
    file(CONFIGURE OUTPUT "${file}" CONTENT "EXPORTS\n    ${text}\n" @ONLY)
    target_link_options(${target} PRIVATE "${file}")
  else()
    # Everything is visible to the linker, which then keeps the listed names alone.
    set_target_properties(${target} PROPERTIES CXX_VISIBILITY_PRESET default VISIBILITY_INLINES_HIDDEN OFF)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
      # It takes no compiled header that was made where names are hidden.
      set_target_properties(${target} PROPERTIES DISABLE_PRECOMPILE_HEADERS ON)
    endif()
    string(JOIN ";\n    " text ${names})
    if(type STREQUAL "EXECUTABLE")
      set(file "${stem}.dynlist")
      file(CONFIGURE OUTPUT "${file}" CONTENT "{\n    ${text};\n};\n" @ONLY)
      target_link_options(${target} PRIVATE "LINKER:--dynamic-list=${file}")
    else()
      set(file "${stem}.map")
      file(CONFIGURE OUTPUT "${file}" CONTENT "{\nglobal:\n    ${text};\nlocal:\n    *;\n};\n" @ONLY)
      target_link_options(${target} PRIVATE "LINKER:--version-script=${file}" LINKER:-Bsymbolic)
    endif()
  endif()
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${file}")
endfunction()

# torvel_bind_functions(TARGET)
#
# A shared library without a list calls its own functions, and names them in its tables of virtual functions, without
# asking for them by name each time it is loaded.
function(torvel_bind_functions target)
  if(NOT WIN32)
    target_link_options(${target} PRIVATE LINKER:-Bsymbolic-functions)
  endif()
endfunction()
