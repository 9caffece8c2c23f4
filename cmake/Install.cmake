# What an installation holds beside what the folders install themselves: the library for the simulator, the object-file
# library with its headers for programs of one's own, a CMake package, and the Debian package of all of it.
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/marlune_fli_memory")
set(header_dir "${CMAKE_INSTALL_INCLUDEDIR}/marlune_fli_memory")

install(TARGETS marlune_fli_memory LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")
set_target_properties(marlune_objectfile PROPERTIES EXPORT_NAME objectfile)
set_target_properties(marlune_include PROPERTIES EXPORT_NAME include)
install(TARGETS marlune_objectfile marlune_include EXPORT marlune_targets
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(EXPORT marlune_targets NAMESPACE marlune:: FILE marlune_fli_memory-targets.cmake DESTINATION "${package_dir}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/objectfile" "${PROJECT_SOURCE_DIR}/elftovexon" DESTINATION "${header_dir}"
        FILES_MATCHING PATTERN "*.h")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include" DESTINATION "${header_dir}" PATTERN CMakeLists.txt EXCLUDE)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples" DESTINATION "${CMAKE_INSTALL_DATADIR}/marlune_fli_memory"
        USE_SOURCE_PERMISSIONS)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs/" DESTINATION "${CMAKE_INSTALL_DOCDIR}")
install(FILES "${PROJECT_SOURCE_DIR}/README.md" "${PROJECT_SOURCE_DIR}/CHANGELOG.md" DESTINATION "${CMAKE_INSTALL_DOCDIR}")

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/marlune_fli_memory-config.cmake.in"
                              "${PROJECT_BINARY_DIR}/marlune_fli_memory-config.cmake"
                              INSTALL_DESTINATION "${package_dir}"
                              PATH_VARS CMAKE_INSTALL_LIBDIR CMAKE_INSTALL_DATADIR)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/marlune_fli_memory-config-version.cmake"
                                 COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/marlune_fli_memory-config.cmake"
              "${PROJECT_BINARY_DIR}/marlune_fli_memory-config-version.cmake"
        DESTINATION "${package_dir}")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME libmarlune-fli-memory)
set(CPACK_PACKAGE_CONTACT "the developers of libmarlune_fli_memory")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_STRIP_FILES ON)
include(CPack)
