# marlune_add_verilator(NAME <executable> TOP <module> SOURCES <file>... [VERILATOR_ARGS <argument>...])
#
# Adds an executable that simulates the module with Verilator; direct calls serve its memories. The sources are those of
# the design and its test bench; the function adds marlune_dpi.sv and marlune_memory.sv. To run it as a test:
# add_test(NAME <name> COMMAND <executable>).
function(marlune_add_verilator)
    cmake_parse_arguments(PARSE_ARGV 0 arg "" "NAME;TOP" "SOURCES;VERILATOR_ARGS")
    if(arg_UNPARSED_ARGUMENTS OR NOT arg_NAME OR NOT arg_TOP OR NOT arg_SOURCES)
        message(FATAL_ERROR "marlune_add_verilator(NAME <executable> TOP <module> SOURCES <file>... "
                            "[VERILATOR_ARGS <argument>...])")
    endif()
    find_package(verilator REQUIRED HINTS "$ENV{VERILATOR_ROOT}")
    get_property(hdl_dir GLOBAL PROPERTY MARLUNE_HDL_DIR)
    set(sources "${hdl_dir}/marlune_dpi.sv" "${hdl_dir}/marlune_memory.sv")
    foreach(source IN LISTS arg_SOURCES)
        get_filename_component(source "${source}" ABSOLUTE)
        list(APPEND sources "${source}")
    endforeach()
    add_executable(${arg_NAME})
    verilate(${arg_NAME} PREFIX V${arg_TOP} TOP_MODULE ${arg_TOP} SOURCES ${sources}
             VERILATOR_ARGS --main --timing ${arg_VERILATOR_ARGS})
    target_link_libraries(${arg_NAME} PUBLIC marlune::direct)
endfunction()
