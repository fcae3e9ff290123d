# Configures a fresh Unix Makefiles tree of SOURCE_DIR in BINARY_DIR, without tests, benchmarks or
# simulators, and builds the message library, whose sources protoc generates at build time.
file(REMOVE_RECURSE ${BINARY_DIR})
execute_process(
  COMMAND ${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${BINARY_DIR} -G "Unix Makefiles"
    -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER}
    -DKESTRAVIN_BUILD_TESTS=OFF -DKESTRAVIN_BUILD_BENCHMARKS=OFF -DKESTRAVIN_BUILD_SERVICE_SIM=OFF
  RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "configuring with Unix Makefiles failed")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --build ${BINARY_DIR} --parallel 2 --target kestravin_messages
  RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "building the message library with Unix Makefiles failed")
endif()
