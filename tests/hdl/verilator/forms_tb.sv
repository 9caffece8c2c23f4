// Memories in generate loops, instance arrays, under escaped names and several levels deep, with computed parameters or
// the default ones: each is reached by its path at time 0, and has its own cells at its ports.
package sizes;
  localparam int ADDRESS_BITS = 4, BANKS = 3;
  localparam PARAMETERS = "0 8 16";
endpackage

module core (input clk, input [3:0] address, output [sizes::BANKS-1:0][7:0] q);
  for (genvar b = 0; b < sizes::BANKS; b++) begin : banks
    if (b == 1) begin : odd
      marlune_memory #(sizes::ADDRESS_BITS, 8, $sformatf("0 8 %0d", 16 * b))
          bank (clk, 1'b1, address, q[b], 1'b0, address, 8'b0);
    end else begin : even
      marlune_memory #(sizes::ADDRESS_BITS, 8, sizes::PARAMETERS)
          bank (clk, 1'b1, address, q[b], 1'b0, address, 8'b0);
    end
  end
endmodule

module forms_tb;
  import marlune_dpi::*;
  bit          clk;
  bit  [3:0]   address;
  wire [7:0]   q[10];
  wire [127:0] wide_q;

  core core (clk, address, {q[2], q[1], q[0]});
  core \other.core (clk, address, {q[5], q[4], q[3]});
  marlune_memory #(4, 8) row[2:0] (clk, 1'b1, address, {q[8], q[7], q[6]}, 1'b0, address, 8'b0);
  marlune_memory #(4, 8) \odd.name+[3] (clk, 1'b1, address, q[9], 1'b0, address, 8'b0);
  marlune_memory #(10, 128) wide (clk, 1'b1, 10'd7, wide_q, 1'b1, 10'd7, {8{16'hABCD}});
  marlune_memory #(4, 8) spare (clk, 1'b1, address, , 1'b0, address, 8'b0);
  modes_tb modes ();

  string paths[10] = '{
      "forms_tb.core.banks[0].even.bank", "forms_tb.core.banks[1].odd.bank", "forms_tb.core.banks[2].even.bank",
      "forms_tb.other.core.banks[0].even.bank", "forms_tb.other.core.banks[1].odd.bank",
      "forms_tb.other.core.banks[2].even.bank", "forms_tb.row[0]", "forms_tb.row[1]", "forms_tb.row[2]",
      "forms_tb.odd.name+[3]"};
  localparam bit [7:0] LOADED[4] = '{8'h33, 8'h11, 8'h77, 8'h55};
  int wrong;

  task automatic expect_value(logic [127:0] actual, wanted, string what);
    if (actual !== wanted) begin
      wrong++;
      $display("%s: %h, not %h", what, actual, wanted);
    end
  endtask

  initial begin
    foreach (paths[i]) begin
      load_image(paths[i], "image.vexon", "data", 'h1004);
      load_bank(paths[i], "image.vexon", "data", 1, 2, 'h1000);
      poke(paths[i], 5, word_t'(i) + 'h1A0);
      foreach (LOADED[c]) expect_value(128'(peek(paths[i], c)), 128'(LOADED[c]), paths[i]);
    end
    poke("forms_tb.wide", 7, word_t'({4{32'h89ABCDEF}}));
    address = 5;
    #1 clk = 1;
    #1 foreach (q[i]) expect_value(128'(q[i]), 128'h0A0 + 128'(i), paths[i]);
    expect_value(wide_q, {4{32'h89ABCDEF}}, "the wide memory");
    clk = 0;
    #1 clk = 1;
    #1 expect_value(wide_q, {8{16'hABCD}}, "the wide memory after a write");
    if ($test$plusargs("bank")) load_bank("forms_tb.wide", "image.vexon", "data", 2, 2);
    if ($test$plusargs("unknown")) poke("forms_tb.unknown", 0, 0);
    if (wrong == 0) $display("forms: PASSED");
  end
endmodule
