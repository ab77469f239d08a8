# Builds one of the EXAMPLES as a project of their own, from nothing, and runs it on the document that
# the file beside it shows.

file(REMOVE_RECURSE ${WORK_TREE})
execute_process(
    COMMAND ${CMAKE_COMMAND} -S ${EXAMPLES} -B ${WORK_TREE} -G ${GENERATOR}
        -D CMAKE_BUILD_TYPE=${CONFIG}
        -D CMAKE_CXX_COMPILER=${CXX}
        -D CMAKE_CXX_FLAGS=${CXX_FLAGS}
        -D CMAKE_PREFIX_PATH=${TREE}
    COMMAND_ERROR_IS_FATAL ANY)
execute_process(
    COMMAND ${CMAKE_COMMAND} --build ${WORK_TREE} --config ${CONFIG} --target list_history
    COMMAND_ERROR_IS_FATAL ANY)

execute_process(COMMAND ${WORK_TREE}/list_history ${DOCUMENT}
    OUTPUT_VARIABLE listed COMMAND_ERROR_IS_FATAL ANY)
file(READ ${EXAMPLES}/list_history.txt expected)
if(NOT "$ list_history samples/report.pdf\n${listed}" STREQUAL expected)
    message(FATAL_ERROR "Listed:\n${listed}Expected:\n${expected}")
endif()
