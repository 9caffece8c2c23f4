// Loads an image into a memory and prints its first byte.
module consumer_tb;
  import marlune_dpi::*;
  logic clk = 0;
  wire [7:0] data;
  marlune_memory #(.ADDRESS_BITS(10), .DATA_BITS(8)) ram (
      .CLK(clk), .r_RE0(1'b1), .r_RA0(10'd0), .r_Q0(data), .w_WE0(1'b0), .w_WA0(10'd0), .w_D0(8'd0));
  always #1 clk = !clk;
  initial begin
    load_image("consumer_tb.ram", "image.vexon", "ram");
    #4 $display("first byte: %0d, read: %0d", 8'(peek("consumer_tb.ram", 0)), data);
    $finish;
  end
endmodule
