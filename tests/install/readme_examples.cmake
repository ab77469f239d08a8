# Checks that the readme shows each of the files EXAMPLES as it is.

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
