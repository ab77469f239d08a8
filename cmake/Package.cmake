# Debian packages, one of each component; scripts/package builds them.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "tresklib developers <tresklib@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each component has its own, in its first line
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL library headers command)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/FinishPackages.cmake)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE tresklib)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY >=)

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libtresklib${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION
"library that reads documents with a history of workflow steps
A document can carry the history of its own making: the steps that were done, and the files that
went in and came out. This library on Qt reads such histories, checks them, takes files out of
documents, and searches and compares them.")

set(CPACK_DEBIAN_HEADERS_PACKAGE_NAME libtresklib-dev)
set(CPACK_DEBIAN_HEADERS_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_HEADERS_DEPENDS library)
if(TRESK_QT EQUAL 6)
    set(CPACK_DEBIAN_HEADERS_PACKAGE_DEPENDS "qt6-base-dev, libqt6core5compat6-dev")
else()
    set(CPACK_DEBIAN_HEADERS_PACKAGE_DEPENDS qtbase5-dev)
endif()
set(CPACK_COMPONENT_HEADERS_DESCRIPTION
"headers of the library that reads documents with a history
What is needed to compile and link programs that use tresklib, with CMake or with pkg-config.")

set(CPACK_DEBIAN_COMMAND_PACKAGE_NAME tresk)
set(CPACK_DEBIAN_COMMAND_PACKAGE_SECTION utils)
set(CPACK_COMPONENT_COMMAND_DEPENDS library)
set(CPACK_COMPONENT_COMMAND_DESCRIPTION
"command for documents that carry a history of workflow steps
Shows the steps and files of a document, compares their checksums, takes files out, finds documents
by what was done in them, and compares the histories of two.")

include(CPack)
