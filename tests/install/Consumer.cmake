# Runs the consumer PROGRAM on the document and compares what it lists.
function(check_consumer program)
    execute_process(COMMAND ${program} ${DOCUMENT}
        OUTPUT_VARIABLE listed COMMAND_ERROR_IS_FATAL ANY)
    file(READ ${SOURCES}/expected.txt expected)
    if(NOT listed STREQUAL expected)
        message(FATAL_ERROR "Listed:\n${listed}Expected:\n${expected}")
    endif()
endfunction()
