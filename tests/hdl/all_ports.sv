// A copy of hdl/marlune_memory.sv with ports of every kind. common.sh appends what is the same for all copies.
/* verilator lint_off TIMESCALEMOD */
module all_ports #(
    parameter ADDRESS_BITS = 4,
    parameter DATA_BITS = 8,
    parameter string PARAMETERS = "",
    parameter MODE = 0
) (
    input                     CLK,
    input                     a_RE0,  // a read port
    input  [ADDRESS_BITS-1:0] a_RA0,
    output [DATA_BITS-1:0]    a_Q0,
    input  [1:0]              b_RE0,  // another one, of a single bit
    input  [ADDRESS_BITS-1:0] b_RA0,
    output                    b_Q0,
    input  [1:0]              c_WE0,  // a write port
    input  [ADDRESS_BITS-1:0] c_WA0,
    input  [DATA_BITS-1:0]    c_D0,
    input                     d_CS0, d_WE0,  // a shared port
    input  [ADDRESS_BITS-1:0] d_A0,
    input  [DATA_BITS-1:0]    d_D0,
    output [DATA_BITS-1:0]    d_Q0,
    input                     e_RE0,  // one of each kind; WA0 is the shared port's address too
    input  [ADDRESS_BITS-1:0] e_RA0, e_WA0,
    input  [1:0]              e_CS0,
    input                     e_WE0,
    input  [DATA_BITS-1:0]    e_D0,
    output [DATA_BITS-1:0]    e_Q0,
    input  [ADDRESS_BITS-1:0] f_RA0,  // incomplete
    output [DATA_BITS-1:0]    f_Q0,
    input                     g_WE0, g_WA0, g_D0  // a write port of single bits
);

`define MARLUNE_PORTS \
    `MARLUNE_INPUT(a_RE0) `MARLUNE_INPUT(a_RA0) `MARLUNE_OUTPUT(a_Q0) \
    `MARLUNE_INPUT(b_RE0) `MARLUNE_INPUT(b_RA0) `MARLUNE_OUTPUT(b_Q0) \
    `MARLUNE_INPUT(c_WE0) `MARLUNE_INPUT(c_WA0) `MARLUNE_INPUT(c_D0) \
    `MARLUNE_INPUT(d_CS0) `MARLUNE_INPUT(d_WE0) `MARLUNE_INPUT(d_A0) `MARLUNE_INPUT(d_D0) `MARLUNE_OUTPUT(d_Q0) \
    `MARLUNE_INPUT(e_RE0) `MARLUNE_INPUT(e_RA0) `MARLUNE_INPUT(e_WA0) `MARLUNE_INPUT(e_CS0) `MARLUNE_INPUT(e_WE0) \
    `MARLUNE_INPUT(e_D0) `MARLUNE_OUTPUT(e_Q0) `MARLUNE_INPUT(f_RA0) `MARLUNE_OUTPUT(f_Q0) \
    `MARLUNE_INPUT(g_WE0) `MARLUNE_INPUT(g_WA0) `MARLUNE_INPUT(g_D0)

