# What all targets of this project share: language level, warnings, sanitizers. The variables apply to its folders only.
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

add_library(marlune_options INTERFACE)
target_compile_features(marlune_options INTERFACE cxx_std_17)
target_compile_options(marlune_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(MARLUNE_WERROR)
    target_compile_options(marlune_options INTERFACE -Werror)
endif()
if(MARLUNE_SANITIZE)
    target_compile_options(marlune_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
                           -fno-omit-frame-pointer)
    target_link_options(marlune_options INTERFACE -fsanitize=address,undefined)
else()
    # Fortified functions need the optimizer.
    target_compile_options(marlune_options INTERFACE -fstack-protector-strong
                           $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE> $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
endif()

# A library that a simulator loads. It exports what the version script beside it lists, and calls between its own entry
# points stay inside. The simulator's functions stay undefined and bind lazily, because not every simulator has all of them.
function(marlune_simulator_library target)
    target_sources(${target} PRIVATE "${PROJECT_SOURCE_DIR}/src/version.cpp")
    target_compile_definitions(${target} PRIVATE MARLUNE_VERSION_TEXT="lib${target} ${PROJECT_VERSION}")
    target_link_libraries(${target} PRIVATE marlune_options)
    target_link_options(${target} PRIVATE -Wl,-z,lazy -Wl,-z,relro -Wl,-Bsymbolic -Wl,-u,marlune_version
                        "-Wl,--version-script=${CMAKE_CURRENT_SOURCE_DIR}/exports.map")
    if(NOT MARLUNE_SANITIZE)
        # Simulators bring their own C++ run-time, often an older one. Unused parts of ours are removed, because some of
        # them need the newest C library.
        target_link_options(${target} PRIVATE -static-libstdc++ -static-libgcc -Wl,--gc-sections)
    endif()
    set_target_properties(${target} PROPERTIES
        LINK_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/exports.map"
        LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}")
endfunction()
