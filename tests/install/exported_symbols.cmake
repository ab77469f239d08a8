# Checks that LIBRARY exports what LIST says, which was reviewed: what stands there is used by
# programs, and so is nothing that may change as it likes. With ACCEPT, writes the list.

cmake_minimum_required(VERSION 3.20)

execute_process(COMMAND ${NM} --dynamic --defined-only --format=just-symbols ${LIBRARY}
    COMMAND ${CXXFILT}
    OUTPUT_VARIABLE exported COMMAND_ERROR_IS_FATAL ANY)
# Constructors and destructors have several symbols of one name, and Qt 6 knows lists of strings
# under another name.
string(REPLACE "QList<QString>" "QStringList" exported "${exported}")
string(REGEX REPLACE "\n$" "" exported "${exported}")
string(REPLACE "\n" ";" exported "${exported}")
list(SORT exported)
list(REMOVE_DUPLICATES exported)

if(ACCEPT)
    list(JOIN exported "\n" text)
    file(WRITE ${LIST} "${text}\n")
    return()
endif()

file(STRINGS ${LIST} reviewed)
set(added ${exported})
list(REMOVE_ITEM added ${reviewed})
set(missing ${reviewed})
list(REMOVE_ITEM missing ${exported})
if(added OR missing)
    list(TRANSFORM added PREPEND "\n  + ")
    list(TRANSFORM missing PREPEND "\n  - ")
    message(FATAL_ERROR "${LIBRARY} exports (+) or lacks (-) what ${LIST} does not say:"
        ${added} ${missing} "\n"
        "Only TRESK_EXPORT in a public header is to export anything; what is missing breaks the "
        "programs of others, and needs a new major version once it was released. If it is right "
        "so, build the target accept_exported_symbols, and commit the list.")
endif()
