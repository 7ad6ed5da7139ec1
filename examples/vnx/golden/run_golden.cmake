# Runs one golden case of vnx: CASE.cmd holds the arguments (one line; file names are relative to
# this folder), CASE.out what vnx must print: standard output, then "--- stderr" and standard
# error, then "--- exit N".
file(STRINGS ${CASE}.cmd args LIMIT_COUNT 1)
separate_arguments(args UNIX_COMMAND "${args}")
get_filename_component(dir ${CASE} DIRECTORY)
execute_process(COMMAND ${VNX} ${args} WORKING_DIRECTORY ${dir}
  OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE code)
set(actual "${out}--- stderr\n${err}--- exit ${code}\n")
file(READ ${CASE}.out expected)
if(NOT actual STREQUAL expected)
  message(FATAL_ERROR "vnx ${args}: output differs from ${CASE}.out; it was:\n${actual}")
endif()
