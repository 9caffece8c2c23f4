# `cpack` makes three Debian packages, one of each component of Install.cmake.
set(MARLUNE_PACKAGE_CONTACT "Developers of libmarlune_fli_memory <developers@libmarlune-fli-memory.invalid>"
    CACHE STRING "Name and address that the Debian packages give as their maintainer's")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME libmarlune-fli-memory)
set(CPACK_PACKAGE_CONTACT "${MARLUNE_PACKAGE_CONTACT}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # that of a package is the first line of its description
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
# As umask 022 would create them, whatever the current one is.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
    WORLD_EXECUTE)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libmarlune-fli-memory)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "memories for designs in HDL simulators
An HDL simulator loads the library to stand in for the memories of a
processor design. A memory has any number of ports, is dense or spread over
the whole 32-bit address range, and has words of up to 1024 bits. The test
bench or the command line loads program images into it.

GHDL, Icarus Verilog, Verilator and simulators with a foreign language
interface run it. The package holds the libraries, the HDL sources that
designs use, examples and documents.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SUGGESTS "marlune-image, ghdl, iverilog, verilator")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
# The loader's cache then includes the libraries that are known by links.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/cmake/debian/triggers")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libmarlune-fli-memory-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "builds with memories for HDL simulators
What builds and programs need to use libmarlune-fli-memory: a CMake package,
pkg-config files, a file for makefiles, and a C header with the functions
that reach the memories of a simulation.

A static library with its C++ headers reads and writes program images.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libmarlune-fli-memory (= ${PROJECT_VERSION})")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME marlune-image)
set(CPACK_COMPONENT_TOOL_DESCRIPTION "program images for memories in HDL simulators
Looks into the program images that libmarlune-fli-memory loads: checks, dumps
and draws them, and lists their sections, symbols and lines. Makes images of
ELF files, Intel HEX, S-records, $readmemh text and raw bytes.")
set(CPACK_DEBIAN_TOOL_PACKAGE_SHLIBDEPS ON)

# What a Debian package must contain besides the files of its component.
set(components runtime development)
if(TARGET marlune-image)
    list(APPEND components tool)
endif()
set(CPACK_COMPONENTS_ALL ${components})
find_program(MARLUNE_GZIP gzip)
find_program(MARLUNE_DATE date)
if(MARLUNE_INSTALL AND MARLUNE_GZIP AND MARLUNE_DATE)
    set(changelog "${PROJECT_SOURCE_DIR}/CHANGELOG.md")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${changelog}")
    file(STRINGS "${changelog}" heading REGEX "^## ${PROJECT_VERSION} ")
    string(REGEX MATCH "[0-9]+-[0-9]+-[0-9]+" date "${heading}")
    if(NOT date)
        message(FATAL_ERROR "CHANGELOG.md has no heading '## ${PROJECT_VERSION} (date)'")
    endif()
    execute_process(COMMAND "${CMAKE_COMMAND}" -E env LC_ALL=C "${MARLUNE_DATE}" -u -R -d "${date}"
                    OUTPUT_VARIABLE debian_date OUTPUT_STRIP_TRAILING_WHITESPACE)
    foreach(component IN LISTS components)
        string(TOUPPER "${component}" key)
        set(package "${CPACK_DEBIAN_${key}_PACKAGE_NAME}")
        set(folder "${PROJECT_BINARY_DIR}/debian/${package}")
        configure_file("${PROJECT_SOURCE_DIR}/cmake/debian/changelog.in" "${folder}/changelog" @ONLY)
        execute_process(COMMAND "${MARLUNE_GZIP}" -9nc changelog WORKING_DIRECTORY "${folder}"
                        OUTPUT_FILE "${folder}/changelog.gz")
        install(FILES "${folder}/changelog.gz" "${PROJECT_SOURCE_DIR}/cmake/debian/copyright"
                DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/${package}" COMPONENT ${component} EXCLUDE_FROM_ALL)
    endforeach()
endif()
include(CPack)
