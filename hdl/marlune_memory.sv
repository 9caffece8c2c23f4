// A memory with one read port (prefix r) and one write port (prefix w), for Verilator and any other simulator with DPI.
// Compile it after marlune_dpi.sv, and link with -lmarlune_direct -lmarlune_fli_memory.
//
// For other ports copy this file, and change the module's name, its ports and the list below them. marlune_memory.vhd
// has the rules of port names.
/* verilator lint_off TIMESCALEMOD */ // a test bench has a timescale or none
module marlune_memory #(
    parameter ADDRESS_BITS = 10,
    parameter DATA_BITS = 32,
    parameter string PARAMETERS = "",  // "mode width cells"; empty: from MODE and the widths above
    parameter MODE = 0          // 0: a read drives Q0 at its own edge; 1: one edge later
) (
    input                     CLK,
    input                     r_RE0,
    input  [ADDRESS_BITS-1:0] r_RA0,
    output [DATA_BITS-1:0]    r_Q0,
    input                     w_WE0,
    input  [ADDRESS_BITS-1:0] w_WA0,
    input  [DATA_BITS-1:0]    w_D0
);

// Each port but CLK, as an input or an output of any width.
`define MARLUNE_PORTS \
    `MARLUNE_INPUT (r_RE0) \
    `MARLUNE_INPUT (r_RA0) \
    `MARLUNE_OUTPUT(r_Q0) \
    `MARLUNE_INPUT (w_WE0) \
    `MARLUNE_INPUT (w_WA0) \
    `MARLUNE_INPUT (w_D0)

  // ---- From here on all copies are the same ----

`define MARLUNE_INPUT(port)  , `"port `"
`define MARLUNE_OUTPUT(port) , `"port `"
  localparam NAMES = {"" `MARLUNE_PORTS};
`undef MARLUNE_INPUT
`undef MARLUNE_OUTPUT

`define MARLUNE_INPUT(port)  , 32'($bits(port))
`define MARLUNE_OUTPUT(port) , 32'($bits(port))
  localparam WIDTHS = {32'd0 `MARLUNE_PORTS};
`undef MARLUNE_INPUT
`undef MARLUNE_OUTPUT

`define MARLUNE_INPUT(port)  + $bits(port)
`define MARLUNE_OUTPUT(port)
  localparam INPUT_BITS = 0 `MARLUNE_PORTS;
`undef MARLUNE_INPUT
`undef MARLUNE_OUTPUT

`define MARLUNE_INPUT(port)
`define MARLUNE_OUTPUT(port) + $bits(port)
  localparam OUTPUT_BITS = 0 `MARLUNE_PORTS;
  localparam OUTPUT_WIRES = OUTPUT_BITS > 0 ? OUTPUT_BITS : 1;
`undef MARLUNE_INPUT
`undef MARLUNE_OUTPUT

  wire [INPUT_BITS-1:0] inputs;
  wire [OUTPUT_WIRES-1:0] outputs;
  wire unused;

`define MARLUNE_INPUT(port)  , port
`define MARLUNE_OUTPUT(port)
  assign inputs = INPUT_BITS'({1'b0 `MARLUNE_PORTS});
`undef MARLUNE_INPUT
`undef MARLUNE_OUTPUT

`define MARLUNE_INPUT(port)
`define MARLUNE_OUTPUT(port) , port
  assign {unused `MARLUNE_PORTS} = (OUTPUT_BITS + 1)'(outputs);
`undef MARLUNE_INPUT
`undef MARLUNE_OUTPUT
`undef MARLUNE_PORTS

  marlune_ports #(PARAMETERS, MODE, DATA_BITS, ADDRESS_BITS, NAMES, WIDTHS, INPUT_BITS, OUTPUT_WIRES)
      memory (CLK, inputs, outputs);

endmodule
