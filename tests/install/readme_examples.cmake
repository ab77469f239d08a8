# Checks that the readme shows each of the files EXAMPLES as it is, and what COMMAND really
# prints for the sample document DOCUMENT.

file(READ ${README} readme)

function(check_shown text what)
    string(FIND "${readme}" "${text}" position)
    if(position EQUAL -1)
        message(SEND_ERROR "${README} does not show ${what} as it is:\n${text}")
    endif()
endfunction()

foreach(example IN LISTS EXAMPLES)
    file(READ ${example} text)
    check_shown("${text}" ${example})
endforeach()

# Run where the reader is, so that paths in the output are the same.
get_filename_component(folder "${README}" DIRECTORY)
file(RELATIVE_PATH document "${folder}" "${DOCUMENT}")

foreach(arguments
        "log|DOC" "log|--oneline|DOC" "cat|DOC|findings-017.csv" "verify|DOC")
    string(REPLACE "|" ";" arguments "${arguments}")
    list(TRANSFORM arguments REPLACE "^DOC$" "${document}")
    execute_process(COMMAND ${COMMAND} ${arguments}
        WORKING_DIRECTORY "${folder}"
        OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
    check_shown("${output}" "the output of tresk ${arguments}")
endforeach()
