# Runs one golden case of vnx: CASE.args holds the arguments (one a line, files relative to the
# cases folder); the standard output, then the standard error and the exit code when there are
# any, must equal CASE.out byte for byte. With UPDATE=1 the .out file is rewritten instead.
file(STRINGS ${CASE}.args args)
execute_process(COMMAND ${VNX} ${args}
  WORKING_DIRECTORY ${CASES}
  OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE code)
set(got "${out}")
if(NOT err STREQUAL "")
  string(APPEND got "--- stderr\n${err}")
endif()
if(NOT code EQUAL 0)
  string(APPEND got "--- exit ${code}\n")
endif()
if(UPDATE)
  file(WRITE ${CASE}.out "${got}")
  return()
endif()
file(READ ${CASE}.out want)
if(NOT got STREQUAL want)
  message(FATAL_ERROR "vnx ${args}: output differs from ${CASE}.out\n--- got:\n${got}--- want:\n${want}")
endif()
