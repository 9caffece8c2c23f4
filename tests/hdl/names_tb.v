// Memories whose names or ports are easily confused.
module renamed_memory (CLK, r_RE0, r_RA0, .r_Q0(q));
  input CLK, r_RE0;
  input [3:0] r_RA0;
  output reg [7:0] q;
  localparam MARLUNE_FOREIGN = "marlune_fli_memory_init libmarlune_fli_memory.so; 0 8 16";
endmodule

module two_state_memory (input CLK, r_RE0, input [3:0] r_RA0, output bit [7:0] r_Q0, output byte s_Q0, input s_RE0, s_RA0);
  localparam MARLUNE_FOREIGN = "marlune_fli_memory_init libmarlune_fli_memory.so; 0 8 16";
endmodule

module names_tb;
  reg clk = 0;
  wire [7:0] q[0:1];
  marlune_memory #(4, 8) Core (clk, 1'b1, 4'd0, , 1'b0, 4'd0, 8'd0);
  marlune_memory #(4, 8) CORE (clk, 1'b1, 4'd0, , 1'b1, 4'd3, 8'h77);
  marlune_memory #(4, 8) r_0__ram (clk, 1'b1, 4'd0, , 1'b0, 4'd0, 8'd0);
  generate
    genvar i;
    for (i = 0; i < 1; i = i + 1) begin : r
      marlune_memory #(4, 8) ram (clk, 1'b1, 4'd0, , 1'b0, 4'd0, 8'd0);
    end
  endgenerate
  renamed_memory renamed (clk, 1'b1, 4'd0, );
  two_state_memory two_state (clk, 1'b1, 4'd0, q[0], q[1], 1'b1, 1'b0);

  initial begin
    if ($test$plusargs("bank")) $marlune_load_bank("names_tb.CORE", "image.vexon", "data", 4, 4);
    $marlune_poke("names_tb.two_state", 0, 8'hA5);
    #5 clk = 1;
    #5 $display("%h", {q[0], q[1]});
    $finish;
  end
endmodule
