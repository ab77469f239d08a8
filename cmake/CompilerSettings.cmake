# Warnings, sanitizers and Qt definitions that every target of the project shares.

add_compile_definitions(
    QT_NO_CAST_FROM_ASCII
    QT_NO_CAST_TO_ASCII
    QT_NO_URL_CAST_FROM_STRING
    QT_NO_KEYWORDS)

if(MSVC)
    add_compile_options(/W4)
else()
    add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow)
endif()

# As Debian does it with what it ships. Sanitizers find more.
if(UNIX AND NOT APPLE AND NOT TRESK_SANITIZE)
    add_compile_options(-fstack-protector-strong)
    add_link_options(LINKER:-z,relro,-z,now)
endif()

if(TRESK_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer
        -fno-sanitize-recover=all)
    add_link_options(-fsanitize=address,undefined)
    add_compile_definitions(QT_FORCE_ASSERTS)
endif()

# What the library is compiled with, and what tests compile of it once more. Every process adds to
# the counts of those before, whatever its environment, in one file for each program and library.
set(tresk_coverage_compile_options)
set(tresk_coverage_link_options)
if(TRESK_COVERAGE)
    set(tresk_coverage_compile_options
        -fprofile-instr-generate=${PROJECT_BINARY_DIR}/profiles/%m.profraw -fcoverage-mapping)
    set(tresk_coverage_link_options -fprofile-instr-generate)
endif()

if(TRESK_BUILD_FUZZERS)
    # Tells libFuzzer which code an input reaches; harmless in what is not a fuzz target.
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()
