# Builds the consumer with find_package(tresklib), from nothing, and runs it.

include(${CMAKE_CURRENT_LIST_DIR}/Consumer.cmake)

build_consumer(${SOURCES})
check_consumer(${WORK_TREE}/${PROGRAM})
