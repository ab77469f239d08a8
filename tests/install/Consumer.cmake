# Builds the project in directory, or only its target where that is given, from nothing.
function(build_consumer directory)
    file(REMOVE_RECURSE ${WORK_TREE})
    execute_process(
        COMMAND ${CMAKE_COMMAND} -S ${directory} -B ${WORK_TREE} -G ${GENERATOR}
            -D CMAKE_BUILD_TYPE=${CONFIG}
            -D CMAKE_CXX_COMPILER=${CXX}
            -D CMAKE_CXX_FLAGS=${CXX_FLAGS}
            -D CMAKE_PREFIX_PATH=${TREE}
        COMMAND_ERROR_IS_FATAL ANY)
    set(targets ${ARGN})
    list(TRANSFORM targets PREPEND --target=)
    execute_process(
        COMMAND ${CMAKE_COMMAND} --build ${WORK_TREE} --config ${CONFIG} ${targets}
        COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# Runs the consumer PROGRAM on the document and compares what it lists.
function(check_consumer program)
    execute_process(COMMAND ${program} ${DOCUMENT}
        OUTPUT_VARIABLE listed COMMAND_ERROR_IS_FATAL ANY)
    file(READ ${SOURCES}/expected.txt expected)
    if(NOT listed STREQUAL expected)
        message(FATAL_ERROR "Listed:\n${listed}Expected:\n${expected}")
    endif()
endfunction()
