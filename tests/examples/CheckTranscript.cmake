# Runs the command in the first line of TRANSCRIPT, behind "$ ", with PROGRAMS in front of the
# search path, in the new folder FOLDER, where SAMPLES can be found as "samples". What it prints has
# to be the rest of the file.

file(READ ${TRANSCRIPT} transcript)
string(FIND "${transcript}" "\n" line_end)
string(SUBSTRING "${transcript}" 0 ${line_end} command)
math(EXPR line_end "${line_end} + 1")
string(SUBSTRING "${transcript}" ${line_end} -1 expected)
if(NOT command MATCHES "^\\$ .")
    message(FATAL_ERROR "${TRANSCRIPT} does not begin with a command")
endif()
string(SUBSTRING "${command}" 2 -1 command)

file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})
file(CREATE_LINK ${SAMPLES} ${FOLDER}/samples SYMBOLIC)

set(ENV{PATH} "${PROGRAMS}:$ENV{PATH}")
set(ENV{LC_ALL} C.UTF-8)
execute_process(COMMAND sh -c "exec 2>&1; ${command}"
    WORKING_DIRECTORY ${FOLDER} OUTPUT_VARIABLE printed)
if(NOT printed STREQUAL expected)
    message(FATAL_ERROR "${command} prints\n${printed}Expected is\n${expected}")
endif()
