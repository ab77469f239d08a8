# Builds the consumer with find_package(tresklib), from nothing, and runs it.

include(${CMAKE_CURRENT_LIST_DIR}/CheckConsumer.cmake)

file(REMOVE_RECURSE ${WORK_TREE})
execute_process(
    COMMAND ${CMAKE_COMMAND} -S ${SOURCES} -B ${WORK_TREE} -G ${GENERATOR}
        -D CMAKE_BUILD_TYPE=${CONFIG}
        -D CMAKE_CXX_COMPILER=${CXX}
        -D CMAKE_CXX_FLAGS=${CXX_FLAGS}
        -D CMAKE_PREFIX_PATH=${TREE}
    COMMAND_ERROR_IS_FATAL ANY)
execute_process(
    COMMAND ${CMAKE_COMMAND} --build ${WORK_TREE} --config ${CONFIG}
    COMMAND_ERROR_IS_FATAL ANY)

check_consumer(${WORK_TREE}/${PROGRAM})
