# What Debian expects in its packages, done to the installed trees of which CPack makes them.

find_program(CHRPATH chrpath REQUIRED)
find_program(GZIP gzip REQUIRED)

function(compress)
    execute_process(COMMAND ${GZIP} --best --no-name --force ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX})
    string(TOUPPER ${component} upper)
    set(documentation ${root}/share/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})

    file(MAKE_DIRECTORY ${documentation})
    file(COPY_FILE ${CMAKE_CURRENT_LIST_DIR}/../CHANGELOG.md ${documentation}/changelog)
    compress(${documentation}/changelog)

    # The system finds the library without being told where it is.
    file(GLOB commands ${root}/bin/*)
    if(commands)
        execute_process(COMMAND ${CHRPATH} --delete ${commands}
            OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
    endif()

    # Of what is below /usr, zsh looks for completions in this folder.
    if(EXISTS ${root}/share/zsh/site-functions)
        file(RENAME ${root}/share/zsh/site-functions ${root}/share/zsh/vendor-completions)
    endif()

    file(GLOB_RECURSE manual_pages ${root}/share/man/*.[1-9])
    if(manual_pages)
        compress(${manual_pages})
    endif()
endforeach()
