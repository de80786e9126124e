# cmake -DPROGRAM=torvelhost -DTEMPLATE=torvelhost.1 -DOUTPUT=FILE -P man_page.cmake
#
# The manual page: the template with the options as the program's own help has them.
execute_process(COMMAND "${PROGRAM}" --help OUTPUT_VARIABLE help COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE ";" "<semicolon>" help "${help}")
string(REPLACE "-" "\\-" help "${help}")
string(REPLACE "\n" ";" lines "${help}")
set(options)
foreach(line IN LISTS lines)
  if(line MATCHES "^  +([^ ]+( [^ ]+)*)   *([^ ].*)$")
    string(APPEND options ".TP\n.B ${CMAKE_MATCH_1}\n${CMAKE_MATCH_3}\n")
  elseif(line MATCHES "^     +([^ ].*)$")
    string(APPEND options "${CMAKE_MATCH_1}\n")
  endif()
endforeach()
string(REPLACE "<semicolon>" ";" options "${options}")
file(READ "${TEMPLATE}" page)
string(REPLACE "@OPTIONS@" "${options}" page "${page}")
file(WRITE "${OUTPUT}" "${page}")
