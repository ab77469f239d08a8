# Installs BUILD_TREE, moves the result to TREE and checks what is there: the public
# headers HEADERS and no others, the library under its versioned names, and a command
# that runs with the library beside it.

set(staged ${TREE}-staged)
file(REMOVE_RECURSE ${TREE} ${staged})
execute_process(
    COMMAND ${CMAKE_COMMAND} --install ${BUILD_TREE} --config ${CONFIG} --prefix ${staged}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(RENAME ${staged} ${TREE})

file(GLOB_RECURSE installed_headers RELATIVE ${TREE}/${INCLUDEDIR} ${TREE}/${INCLUDEDIR}/*)
if(NOT "${installed_headers}" STREQUAL "${HEADERS}")
    message(FATAL_ERROR "Headers installed: ${installed_headers}\nPublic headers: ${HEADERS}")
endif()

file(READ_SYMLINK ${TREE}/${LIBDIR}/libtresklib.so soname)
if(NOT soname MATCHES "^libtresklib\\.so\\.[0-9.]+$")
    message(FATAL_ERROR "libtresklib.so leads to ${soname}")
endif()

set(command ${TREE}/${BINDIR}/tresk)
file(GET_RUNTIME_DEPENDENCIES
    EXECUTABLES ${command}
    RESOLVED_DEPENDENCIES_VAR libraries
    PRE_EXCLUDE_REGEXES ".*"
    PRE_INCLUDE_REGEXES "libtresklib")
file(REAL_PATH "${libraries}" library_used)
file(REAL_PATH ${TREE}/${LIBDIR}/libtresklib.so library_installed)
if(NOT library_used STREQUAL library_installed)
    message(FATAL_ERROR "${command} takes its library from: ${library_used}")
endif()

execute_process(
    COMMAND ${CMAKE_COMMAND} -E env --unset=LD_LIBRARY_PATH ${command} log ${DOCUMENT}
    OUTPUT_VARIABLE history COMMAND_ERROR_IS_FATAL ANY)
if(history STREQUAL "")
    message(FATAL_ERROR "${command} shows no history of ${DOCUMENT}")
endif()
