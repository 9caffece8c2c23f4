# What all targets of this project share: language level, warnings, sanitizers.
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

add_library(marlune_options INTERFACE)
target_compile_options(marlune_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(MARLUNE_WERROR)
    target_compile_options(marlune_options INTERFACE -Werror)
endif()
if(MARLUNE_SANITIZE)
    target_compile_options(marlune_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
                           -fno-omit-frame-pointer)
    target_link_options(marlune_options INTERFACE -fsanitize=address,undefined)
endif()
