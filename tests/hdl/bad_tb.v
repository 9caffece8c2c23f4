// An instance that cannot be elaborated, for the reason that the parameter or the macro gives.
module bad_memory #(
    parameter MARLUNE_FOREIGN = ""
) (
`ifdef REAL_PORT
    input wire real a_RA0,
`endif
    input p_CS,
    input CLK
);
endmodule

module bad_tb;
  parameter FOREIGN = "marlune_fli_memory_init libmarlune_fli_memory.so; 0 8 16";
  reg  clk = 0;
  wire real level = 0.5;
  bad_memory #(FOREIGN) memory (
`ifdef REAL_PORT
      level,
`endif
      1'b0,
      clk);
  initial $display("the simulation has started");
endmodule
