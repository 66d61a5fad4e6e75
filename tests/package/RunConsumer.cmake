# Installs the built project into a scratch prefix, then configures, builds and runs the
# consumer against it with the shared and with the static library.
file(REMOVE_RECURSE ${WORK_DIR})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/prefix
                RESULT_VARIABLE result)
if(result)
  message(FATAL_ERROR "install failed")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/build
                -DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix -DCMAKE_BUILD_TYPE=${BUILD_TYPE}
                -DCMAKE_CXX_FLAGS=${CXX_FLAGS} -DCMAKE_EXE_LINKER_FLAGS=${LINKER_FLAGS}
                RESULT_VARIABLE result)
if(result)
  message(FATAL_ERROR "consumer configure failed")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/build RESULT_VARIABLE result)
if(result)
  message(FATAL_ERROR "consumer build failed")
endif()
foreach(program consumer_shared consumer_static)
  execute_process(COMMAND ${WORK_DIR}/build/${program} RESULT_VARIABLE result)
  if(result)
    message(FATAL_ERROR "${program} failed: ${result}")
  endif()
endforeach()
