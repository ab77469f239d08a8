# Builds the consumer with what pkg-config says of tresklib, and runs it.

include(${CMAKE_CURRENT_LIST_DIR}/Consumer.cmake)

file(REMOVE_RECURSE ${WORK_TREE})
file(MAKE_DIRECTORY ${WORK_TREE})

set(ENV{PKG_CONFIG_PATH} ${TREE}/${LIBDIR}/pkgconfig)
execute_process(COMMAND ${PKG_CONFIG} --modversion tresklib
    OUTPUT_VARIABLE version OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
if(NOT version STREQUAL VERSION)
    message(FATAL_ERROR "pkg-config says that the version is ${version}")
endif()
execute_process(COMMAND ${PKG_CONFIG} --cflags --libs tresklib
    OUTPUT_VARIABLE package_flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(package_flags UNIX_COMMAND "${package_flags}")
separate_arguments(CXX_FLAGS UNIX_COMMAND "${CXX_FLAGS}")
execute_process(
    COMMAND ${CXX} -std=c++17 ${CXX_FLAGS} ${SOURCES}/main.cpp ${package_flags}
        -o ${WORK_TREE}/${PROGRAM}
    COMMAND_ERROR_IS_FATAL ANY)

set(ENV{LD_LIBRARY_PATH} ${TREE}/${LIBDIR})
check_consumer(${WORK_TREE}/${PROGRAM})
