// A memory with one read port (prefix r) and one write port (prefix w), for Icarus Verilog with
//
//   vvp -M$LIB -mmarlune_fli my_tb.vvp
//
// For an FLI simulator use the VHDL entity instead, and for a simulator with DPI marlune_memory.sv. For other ports
// copy this file, and change the module's name and its ports. marlune_memory.vhd has the rules of port names. Outputs
// are of type reg, because Icarus folds an undriven net into a constant. The library reads the ports and drives Q0.
module marlune_memory #(
    parameter ADDRESS_BITS = 10,
    parameter DATA_BITS = 32,
    parameter PARAMETERS = "",  // "mode width cells"; empty: from MODE and the widths above
    parameter MODE = 0          // 0: a read drives Q0 at its own edge; 1: one edge later
) (
    input                         CLK,
    input                         r_RE0,
    input      [ADDRESS_BITS-1:0] r_RA0,
    output reg [DATA_BITS-1:0]    r_Q0,
    input                         w_WE0,
    input      [ADDRESS_BITS-1:0] w_WA0,
    input      [DATA_BITS-1:0]    w_D0
);
    localparam MARLUNE_FOREIGN = {"marlune_fli_memory_init libmarlune_fli_memory.so; ", PARAMETERS};

    // The library sets it before time 0. It has no initial value, which would overwrite that.
    reg MARLUNE_SERVED;
    always @(posedge CLK)
        if (MARLUNE_SERVED !== 1) begin
            $display("%m: no library serves this memory. Run vvp with -M$LIB -mmarlune_fli.");
            $finish_and_return(1);
        end
endmodule
