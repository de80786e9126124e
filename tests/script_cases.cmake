# torvel_script_cases(NAME [DIALOGS] [SCRIPTS SCRIPT...])
#     A test NAME.CASE for every script CASE.scr of this folder, which runs it through torvelhost; run_case.py says what
#     belongs to a case. Programs for Windows run under Wine by themselves. With DIALOGS every script is run once more,
#     working real windows, as NAME_in_windows.CASE; NAME.recorded records and replays all of them (run_recorded.py).
#     SCRIPTS are cases that lie elsewhere. A table statuses.txt in the folder is the test NAME.statuses, see
#     run_statuses.py.
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
  file(GLOB scripts CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.scr")
  list(JOIN CMAKE_CROSSCOMPILING_EMULATOR "\\;" emulator)
  set(run_case "${TORVEL_PYTHON}" "${PROJECT_SOURCE_DIR}/tests/run_case.py" --program "$<TARGET_FILE:torvelhost>")
  if(TORVEL_CHECK_ONCE)
    list(APPEND run_case --audit)
  endif()
  foreach(script IN LISTS scripts arg_SCRIPTS)
    cmake_path(GET script STEM case)
    torvel_add_test(${name}.${case} ${run_case} "--emulator=${emulator}" "${script}")
    if(arg_DIALOGS AND (WIN32 OR TORVEL_QT))
      torvel_add_test(${name}_in_windows.${case} ${run_case} "--emulator=${emulator}" --option=--windows "${script}")
    endif()
  endforeach()
  if(arg_DIALOGS AND TORVEL_QT AND NOT TORVEL_SANITIZE)
    # The sanitizers want to be loaded first themselves.
    torvel_add_test(${name}.recorded "${TORVEL_PYTHON}" "${PROJECT_SOURCE_DIR}/tests/run_recorded.py" --program
                    "$<TARGET_FILE:torvelhost>" --recorder "$<TARGET_FILE:record_lines>" --option=--windows ${scripts})
  endif()
  if(EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/statuses.txt")
    torvel_add_test(${name}.statuses "${TORVEL_PYTHON}" "${PROJECT_SOURCE_DIR}/tests/run_statuses.py"
                    --program "$<TARGET_FILE:torvelhost>" "--emulator=${emulator}"
                    "${CMAKE_CURRENT_SOURCE_DIR}/statuses.txt")
  endif()
endfunction()
