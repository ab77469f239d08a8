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

foreach(arguments "log|DOC" "log|--oneline|DOC" "cat|DOC|findings-017.csv")
    string(REPLACE "|" ";" arguments "${arguments}")
    list(TRANSFORM arguments REPLACE "^DOC$" "${DOCUMENT}")
    execute_process(COMMAND ${COMMAND} ${arguments}
        OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
    check_shown("${output}" "the output of tresk ${arguments}")
endforeach()
