// A copy of hdl/marlune_memory.sv with two read ports, whose prefixes differ in case only, a write port and a shared
// port. common.sh appends what is the same for all copies.
/* verilator lint_off TIMESCALEMOD */
module all_ports #(
    parameter ADDRESS_BITS = 4,
    parameter DATA_BITS = 8,
    parameter string PARAMETERS = "",
    parameter MODE = 0
) (
    input                     CLK,
    input                     a_RE0,
    input  [ADDRESS_BITS-1:0] a_RA0,
    output [DATA_BITS-1:0]    a_Q0,
    input  [1:0]              A_RE0,
    input  [ADDRESS_BITS-1:0] A_RA0,
    output                    A_Q0,
    input  [1:0]              c_WE0,
    input  [ADDRESS_BITS-1:0] c_WA0,
    input  [DATA_BITS-1:0]    c_D0,
    input                     d_CS0, d_WE0,
    input  [ADDRESS_BITS-1:0] d_A0,
    input  [DATA_BITS-1:0]    d_D0,
    output [DATA_BITS-1:0]    d_Q0
);

`define MARLUNE_PORTS \
    `MARLUNE_INPUT(a_RE0) `MARLUNE_INPUT(a_RA0) `MARLUNE_OUTPUT(a_Q0) \
    `MARLUNE_INPUT(A_RE0) `MARLUNE_INPUT(A_RA0) `MARLUNE_OUTPUT(A_Q0) \
    `MARLUNE_INPUT(c_WE0) `MARLUNE_INPUT(c_WA0) `MARLUNE_INPUT(c_D0) \
    `MARLUNE_INPUT(d_CS0) `MARLUNE_INPUT(d_WE0) `MARLUNE_INPUT(d_A0) `MARLUNE_INPUT(d_D0) `MARLUNE_OUTPUT(d_Q0)

