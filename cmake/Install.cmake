# What `cmake --install` puts where: the public headers, the library, the command, and
# what finds them again, a package configuration for CMake and a file for pkg-config.
# The installed tree may be moved: nothing in it knows where it stands. Its components are
# "library", all that a program needs that was linked to it; "headers", all that is needed to
# compile and link one; and "command".

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/tresklib)
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# Users of the headers need the language that these are written in.
target_compile_features(tresklib PUBLIC cxx_std_17)

install(TARGETS tresklib EXPORT tresklibTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        COMPONENT library NAMELINK_COMPONENT headers
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT headers
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT library)
install(DIRECTORY include/tresk ${PROJECT_BINARY_DIR}/include/tresk
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT headers
    FILES_MATCHING PATTERN "*.h")

# The command finds the library of its own tree.
file(RELATIVE_PATH bin_to_lib ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
set_target_properties(tresk PROPERTIES INSTALL_RPATH "$ORIGIN/${bin_to_lib}")
install(TARGETS tresk RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT command)

# find_package(tresklib). A new major version may change the interface.
list(JOIN tresk_qt_modules " " tresk_qt_components)
configure_package_config_file(
    cmake/tresklibConfig.cmake.in ${PROJECT_BINARY_DIR}/tresklibConfig.cmake
    INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/tresklibConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/tresklibConfig.cmake
    ${PROJECT_BINARY_DIR}/tresklibConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT headers)
install(EXPORT tresklibTargets
    FILE tresklibTargets.cmake
    NAMESPACE tresklib::
    DESTINATION ${package_dir} COMPONENT headers)

# pkg-config tresklib. Appending to ${prefix} gives way to folders that are absolute.
file(RELATIVE_PATH pkgconfig_to_prefix
    ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" pkgconfig_to_prefix ${pkgconfig_to_prefix})
set(pc_libdir "\${prefix}")
cmake_path(APPEND pc_libdir "${CMAKE_INSTALL_LIBDIR}")
set(pc_includedir "\${prefix}")
cmake_path(APPEND pc_includedir "${CMAKE_INSTALL_INCLUDEDIR}")
list(TRANSFORM tresk_qt_modules PREPEND Qt${TRESK_QT} OUTPUT_VARIABLE pc_qt_modules)
list(JOIN pc_qt_modules " " pc_qt_modules)
configure_file(cmake/tresklib.pc.in ${PROJECT_BINARY_DIR}/tresklib.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tresklib.pc
    DESTINATION ${pkgconfig_dir} COMPONENT headers)
