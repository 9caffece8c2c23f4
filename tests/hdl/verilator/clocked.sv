// A memory whose clock a main program drives.
module clocked (input clk, output [7:0] q);
  marlune_memory #(4, 8) ram (clk, 1'b1, 4'd3, q, 1'b1, 4'd3, 8'h5A);
endmodule
