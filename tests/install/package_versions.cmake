# Checks which versions find_package() may ask for: the installed one or an older one of the same
# major version.

cmake_minimum_required(VERSION 3.20)

if(NOT VERSION MATCHES "^([0-9]+)\\.([0-9]+)\\.([0-9]+)$")
    message(FATAL_ERROR "The version is ${VERSION}")
endif()
set(major ${CMAKE_MATCH_1})
set(minor ${CMAKE_MATCH_2})
set(patch ${CMAKE_MATCH_3})
math(EXPR older "${major} - 1")
math(EXPR newer "${major} + 1")
math(EXPR next_minor "${minor} + 1")
math(EXPR next_patch "${patch} + 1")

set(package_dir ${TREE}/${LIBDIR}/cmake/tresklib)

# A version that is accepted is that of a package whose targets only a project can have; the
# consumer asks for it. Here the file that find_package() asks first answers.
function(check_version requested expected)
    set(PACKAGE_FIND_VERSION ${requested})
    string(REPLACE "." ";" parts ${requested}.0.0)
    list(GET parts 0 PACKAGE_FIND_VERSION_MAJOR)
    list(GET parts 1 PACKAGE_FIND_VERSION_MINOR)
    include(${package_dir}/tresklibConfigVersion.cmake)
    if(NOT PACKAGE_VERSION STREQUAL VERSION)
        message(SEND_ERROR "The package has the version ${PACKAGE_VERSION}")
    endif()
    if((PACKAGE_VERSION_COMPATIBLE AND NOT expected) OR (expected AND NOT PACKAGE_VERSION_COMPATIBLE))
        message(SEND_ERROR "Asked for ${requested}, the package says '${PACKAGE_VERSION_COMPATIBLE}'")
    endif()
endfunction()

check_version(${major} TRUE)
check_version(${major}.0 TRUE)
check_version(${VERSION} TRUE)
foreach(refused ${older}.9 ${newer}.0 ${major}.${next_minor} ${major}.${minor}.${next_patch})
    check_version(${refused} FALSE)
    find_package(tresklib ${refused} QUIET CONFIG PATHS ${package_dir} NO_DEFAULT_PATH)
    if(tresklib_FOUND)
        message(SEND_ERROR "find_package(tresklib ${refused}) finds ${VERSION}")
    elseif(NOT "${VERSION}" IN_LIST tresklib_CONSIDERED_VERSIONS)
        message(SEND_ERROR "find_package(tresklib ${refused}) does not see the package")
    endif()
endforeach()
