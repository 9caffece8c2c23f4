// A memory with one read port (prefix r) and one write port (prefix w) of any width, for Icarus Verilog and Verilator with
// the bridge. An FLI simulator takes the VHDL entity in its place. Copy the file for other port groups: marlune_memory.vhd
// tells the rules of their names. The body stays empty: the library reads the ports and drives Q0.
//
// PARAMETERS: "0" or "1" (a read drives Q0 at its own edge or one later), bits of one addressable unit, number of cells.
module marlune_memory #(
    parameter ADDRESS_BITS = 10,
    parameter DATA_BITS = 32,
    parameter PARAMETERS = "0 32 1024"
) (
    input                     CLK,
    input                     r_RE0,
    input  [ADDRESS_BITS-1:0] r_RA0,
    output [DATA_BITS-1:0]    r_Q0,
    input                     w_WE0,
    input  [ADDRESS_BITS-1:0] w_WA0,
    input  [DATA_BITS-1:0]    w_D0
);
    localparam MARLUNE_FOREIGN = {"marlune_fli_memory_init libmarlune_fli_memory.so; ", PARAMETERS};
endmodule
