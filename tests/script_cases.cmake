# torvel_script_cases(NAME [DIALOGS] [SCRIPTS SCRIPT...])
#     The test that runs every script of this folder through torvelhost; run_case.py says what belongs to a case. Programs
#     for Windows run under Wine by themselves. With DIALOGS every script is run there once more, working real windows.
#     SCRIPTS are cases that lie elsewhere.
find_program(TORVEL_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH)
if(NOT TORVEL_PYTHON)
  find_program(TORVEL_PYTHON python3)
endif()

function(torvel_script_cases name)
  if(NOT TORVEL_PYTHON)
    message(STATUS "python3 is not installed: the script cases of ${name} are not run.")
    return()
  endif()
  cmake_parse_arguments(PARSE_ARGV 1 arg "DIALOGS" "" "SCRIPTS")
  file(GLOB cases CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.scr")
  list(APPEND cases ${arg_SCRIPTS})
  list(JOIN CMAKE_CROSSCOMPILING_EMULATOR "\\;" emulator)
  torvel_add_test(${name} "${TORVEL_PYTHON}" "${PROJECT_SOURCE_DIR}/tests/run_case.py"
                  --program "$<TARGET_FILE:torvelhost>" "--emulator=${emulator}" ${cases})
  if(WIN32 AND arg_DIALOGS)
    torvel_add_test(${name}_in_windows "${TORVEL_PYTHON}" "${PROJECT_SOURCE_DIR}/tests/run_case.py"
                    --program "$<TARGET_FILE:torvelhost>" "--emulator=${emulator}" --option=--windows ${cases})
  endif()
endfunction()
