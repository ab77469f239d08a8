# Installs each component of BUILD_TREE alone and checks that it is what its name says, and that
# TREE, in which all were installed, has nothing else.

cmake_minimum_required(VERSION 3.20)

set(library_files "^${LIBDIR}/libtresklib\\.so\\.")
set(command_files "^(${BINDIR}|share)/")
set(headers_files
    "^(${INCLUDEDIR}/tresk/|${LIBDIR}/(libtresklib\\.so$|cmake/tresklib/|pkgconfig/tresklib\\.pc$))")

file(GLOB_RECURSE all_files RELATIVE ${TREE} ${TREE}/*)
foreach(component IN ITEMS library headers command)
    set(tree ${WORK_TREE}/${component})
    file(REMOVE_RECURSE ${tree})
    execute_process(
        COMMAND ${CMAKE_COMMAND} --install ${BUILD_TREE} --config ${CONFIG}
            --prefix ${tree} --component ${component}
        OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)

    file(GLOB_RECURSE files RELATIVE ${tree} ${tree}/*)
    set(expected ${all_files})
    list(FILTER expected INCLUDE REGEX "${${component}_files}")
    if(NOT files OR NOT "${files}" STREQUAL "${expected}")
        message(SEND_ERROR "The component ${component} has: ${files}\nExpected: ${expected}")
    endif()
    list(REMOVE_ITEM all_files ${files})
endforeach()
if(all_files)
    message(SEND_ERROR "No component has: ${all_files}")
endif()
