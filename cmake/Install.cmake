# What an installation contains, in three components: "runtime" is what simulators load and designs use, "development" is
# for users' own programs and builds, "tool" is marlune-image. Packages.cmake makes a Debian package of each.
include(CMakePackageConfigHelpers)

set(library_dir "${CMAKE_INSTALL_LIBDIR}/marlune")
set(cmake_dir "${CMAKE_INSTALL_LIBDIR}/cmake/marlune_fli_memory")
set(pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
set(header_dir "${CMAKE_INSTALL_INCLUDEDIR}/marlune_fli_memory")
set(data_dir "${CMAKE_INSTALL_DATADIR}/marlune_fli_memory")

# The libraries have a folder of their own. Links are where simulators look for them: in the loader's path, for GHDL and
# linkers, which use a bare name, and in Icarus Verilog's folder of modules.
set_target_properties(marlune_direct PROPERTIES EXPORT_NAME direct)
set_target_properties(marlune_fli_memory PROPERTIES EXPORT_NAME fli_memory)
install(TARGETS marlune_direct marlune_fli_memory EXPORT marlune_targets
        LIBRARY DESTINATION "${library_dir}" COMPONENT runtime)
function(marlune_install_link link target destination)
    set(file "${PROJECT_BINARY_DIR}/links/${destination}/${link}")
    get_filename_component(folder "${file}" DIRECTORY)
    file(MAKE_DIRECTORY "${folder}")
    file(CREATE_LINK "${target}" "${file}" SYMBOLIC)
    install(FILES "${file}" DESTINATION "${destination}" COMPONENT runtime)
endfunction()
foreach(link libmarlune_fli_vpi.so marlune_fli.vpi)
    marlune_install_link(${link} libmarlune_direct.so "${library_dir}")
endforeach()
foreach(library libmarlune_direct.so libmarlune_fli_memory.so libmarlune_fli_vpi.so)
    marlune_install_link(${library} marlune/${library} "${CMAKE_INSTALL_LIBDIR}")
endforeach()
marlune_install_link(marlune_fli.vpi ../marlune/marlune_fli.vpi "${CMAKE_INSTALL_LIBDIR}/ivl")

install(DIRECTORY "${PROJECT_SOURCE_DIR}/hdl" "${PROJECT_SOURCE_DIR}/examples" DESTINATION "${data_dir}"
        COMPONENT runtime USE_SOURCE_PERMISSIONS)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs/" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT runtime)
install(FILES "${PROJECT_SOURCE_DIR}/README.md" "${PROJECT_SOURCE_DIR}/CHANGELOG.md"
        DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT runtime)

# The object-file library. Its other headers are not for use outside.
set_target_properties(marlune_objectfile PROPERTIES EXPORT_NAME objectfile)
set_target_properties(marlune_include PROPERTIES EXPORT_NAME include)
install(TARGETS marlune_objectfile marlune_include EXPORT marlune_targets
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development)
set(public_headers
    include/general_error
    include/marlune_dpi.h
    include/marlune_int
    include/number_cast
    objectfile/errors.h
    objectfile/expansiontable.h
    objectfile/lineinfo.h
    objectfile/memoryorganization.h
    objectfile/objectfile.h
    objectfile/objectfileutils.h
    objectfile/persistentobject.h
    objectfile/regularfile.h
    objectfile/relocation.h
    objectfile/section.h
    objectfile/sectioncontainer.h
    objectfile/sectiondata.h
    objectfile/sharedtext.h
    objectfile/streams.h
    objectfile/symbol.h
    objectfile/symboltable.h
    objectfile/utils.h)
foreach(header IN LISTS public_headers)
    get_filename_component(folder "${header}" DIRECTORY)
    install(FILES "${PROJECT_SOURCE_DIR}/${header}" DESTINATION "${header_dir}/${folder}" COMPONENT development)
endforeach()

# How builds find all this: a CMake package, pkg-config files, and one to include in makefiles.
install(EXPORT marlune_targets NAMESPACE marlune:: FILE marlune_fli_memory-targets.cmake DESTINATION "${cmake_dir}"
        COMPONENT development)
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/marlune_fli_memory-config.cmake.in"
                              "${PROJECT_BINARY_DIR}/marlune_fli_memory-config.cmake"
                              INSTALL_DESTINATION "${cmake_dir}" PATH_VARS library_dir data_dir)
# Before version 1.0 a minor version may change what programs use.
write_basic_package_version_file("${PROJECT_BINARY_DIR}/marlune_fli_memory-config-version.cmake"
                                 COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/marlune_fli_memory-config.cmake"
              "${PROJECT_BINARY_DIR}/marlune_fli_memory-config-version.cmake"
              "${PROJECT_SOURCE_DIR}/cmake/MarluneVerilator.cmake"
        DESTINATION "${cmake_dir}" COMPONENT development)

file(RELATIVE_PATH library_dir_from_data_dir "/${data_dir}" "/${library_dir}")
file(RELATIVE_PATH prefix_from_pkgconfig_dir "/${pkgconfig_dir}" "/")
string(REGEX REPLACE "/$" "" prefix_from_pkgconfig_dir "${prefix_from_pkgconfig_dir}")
function(marlune_install_configured file destination)
    configure_file("${PROJECT_SOURCE_DIR}/cmake/${file}.in" "${PROJECT_BINARY_DIR}/${file}" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/${file}" DESTINATION "${destination}" COMPONENT development)
endfunction()
marlune_install_configured(marlune.mk "${data_dir}")
marlune_install_configured(marlune.pc "${pkgconfig_dir}")
marlune_install_configured(marlune-objectfile.pc "${pkgconfig_dir}")

if(TARGET marlune-image)
    set(tools_dir "${PROJECT_SOURCE_DIR}/tools")
    install(TARGETS marlune-image RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tool)
    if(TARGET marlune_image_manual)
        set(manual "${PROJECT_BINARY_DIR}/tools/marlune-image.1.gz")
    else()
        set(manual "${tools_dir}/marlune-image.1")
    endif()
    install(FILES "${manual}" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT tool)
    install(FILES "${tools_dir}/marlune-image.bash" DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions"
            RENAME marlune-image COMPONENT tool)
endif()
