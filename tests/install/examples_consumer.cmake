# Builds one of the EXAMPLES as a project of their own, from nothing, and runs it on the document that
# the file beside it shows.

include(${CMAKE_CURRENT_LIST_DIR}/Consumer.cmake)

build_consumer(${EXAMPLES} list_history)

execute_process(COMMAND ${WORK_TREE}/list_history ${DOCUMENT}
    OUTPUT_VARIABLE listed COMMAND_ERROR_IS_FATAL ANY)
file(READ ${EXAMPLES}/list_history.txt expected)
if(NOT "$ list_history samples/report.pdf\n${listed}" STREQUAL expected)
    message(FATAL_ERROR "Listed:\n${listed}Expected:\n${expected}")
endif()
