# Installs the built library into a scratch prefix, then configures, builds and runs a tiny
# consumer that finds it with find_package(vnxml) and with pkg-config.
set(prefix ${WORK_DIR}/prefix)
file(REMOVE_RECURSE ${WORK_DIR})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BINARY_DIR} --prefix ${prefix} RESULT_VARIABLE rc)
if(rc)
  message(FATAL_ERROR "install failed: ${rc}")
endif()
set(flags "")
if(SANITIZE)
  # A sanitized library needs a sanitized program to link against it.
  set(flags "-DCMAKE_CXX_FLAGS=-fsanitize=address,undefined"
            "-DCMAKE_EXE_LINKER_FLAGS=-fsanitize=address,undefined")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE_DIR}/tests/install/consumer -B ${WORK_DIR}/build -G Ninja
  -DCMAKE_PREFIX_PATH=${prefix} ${flags} RESULT_VARIABLE rc)
if(rc)
  message(FATAL_ERROR "configure of the consumer failed: ${rc}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/build RESULT_VARIABLE rc)
if(rc)
  message(FATAL_ERROR "build of the consumer failed: ${rc}")
endif()
execute_process(COMMAND ${WORK_DIR}/build/consumer RESULT_VARIABLE rc OUTPUT_VARIABLE out)
if(rc)
  message(FATAL_ERROR "consumer failed: ${rc} ${out}")
endif()
message(STATUS "consumer: ${out}")
