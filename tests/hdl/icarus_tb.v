// Icarus Verilog runs memories through the bridge: outputs in all kinds of expressions, the system tasks.
module pass #(parameter BITS = 8) (input [BITS-1:0] in, output [BITS-1:0] out);
  assign out = in;
endmodule

module icarus_tb;
  reg         clk = 0, write = 0;
  reg  [3:0]  address = 0;
  reg  [7:0]  data = 0;
  wire [7:0]  q[0:1];
  integer     compared = 0, wrong = 0, cycle;

  always #5 clk = !clk;

  marlune_memory #(4, 8) first (clk, 1'b1, address, q[0], write, data[3:0], data);
  marlune_memory #(4, 8) second (clk, 1'b1, address, q[1], write, data[7:4], ~data);

  task compare(input [1023:0] actual, wanted);
    begin
      compared = compared + 1;
      if (actual !== wanted) begin
        wrong = wrong + 1;
        $display("cycle %0d: %h instead of %h", cycle, actual, wanted);
      end
    end
  endtask

  // Nets alone, which the simulator might fold, and what they are in procedural code.
  wire [15:0] nets[0:4], through_port, through_array;
  reg  [7:0]  x, y;
  pass #(16) port ({q[1], q[0]}, through_port);
  pass #(8) array[1:0] ({q[1], q[0]}, through_array);
  assign nets[0] = {q[1], q[0]};
  assign nets[1] = {8'h0, q[0]};
  assign nets[2] = q[0];
  assign nets[3] = {2{q[0]}};
  assign nets[4] = q[0] * q[1];

  task compare_forms;
    begin
      x = q[0];
      y = q[1];
      compare({through_port, through_array, nets[0], nets[1]}, {{3{y, x}}, 8'h0, x});
      compare({nets[2], nets[3], nets[4]}, {8'h0, x, x, x, {8'h0, x} * {8'h0, y}});
    end
  endtask

  // Memories for the system tasks: the widest, of the default parameters, in an array, and with an odd name.
  marlune_memory #(4, 1024) widest (clk, 1'b1, 4'd0, , 1'b0, 4'd0, 1024'd0);
  wire [127:0] wide_q;
  marlune_memory #(10, 128) wide (clk, 1'b1, 10'd7, wide_q, write, 10'd7, {8{16'hABCD}});
  marlune_memory #(4, 8) rows[1:0] (clk, 1'b1, 4'd0, , 1'b0, 4'd0, 8'd0);
  marlune_memory #(32, 8) \odd.name+[3] (clk, 1'b1, 32'd0, , 1'b0, 32'd0, 8'd0);

  integer      i;
  reg [7:0]    cell_value;
  reg [63:0]   image, bank;
  reg [1031:0] longest;

  initial begin
    $marlune_load_image("icarus_tb.rows[0]", "image.vexon", "data", 4096);
    $marlune_load_bank("/ICARUS_TB/rows[1]", "image.vexon", "data", 1, 2, 'h1000);
    for (i = 0; i < 8; i = i + 1) begin
      $marlune_peek("icarus_tb:rows[0]:", i, cell_value);
      image[8*i +: 8] = cell_value;
      $marlune_peek("icarus_tb.rows[1]", i, cell_value);
      bank[8*i +: 8] = cell_value;
    end
    compare(image, 64'h5566778811223344);
    compare(bank, 64'h55771133);
    $marlune_poke("icarus_tb.odd.name+[3]", 32'hFFFFFFFE, 12'h7A1);
    $marlune_peek("icarus_tb.odd.name+[3]", 32'hFFFFFFFE, longest);
    compare(longest, 8'hA1);
    $marlune_poke("icarus_tb.widest", 15, {1032'hF, 1016'h1XZ2});
    $marlune_peek("icarus_tb.widest", 15, longest);
    compare(longest[1023:0], {8'hF, 1016'h1002});
    compare(longest[1031:1024], 0);
    $marlune_poke("icarus_tb.wide", 3, {bank[7:0], image[31:0]}); // Icarus gives more bits than these 40
    $marlune_peek("icarus_tb.wide", 3, longest);
    compare(longest, 40'h3311223344);
  end

  initial begin
    for (cycle = 0; cycle < 500; cycle = cycle + 1) begin
      @(posedge clk);
      {write, address, data} = $random;
      #1 compare_forms;
    end
    compare(q[0] != q[1], 1);
    compare(wide_q, {8{16'hABCD}});
    $display("%0d values compared, %0d differ", compared, wrong);
    if (wrong == 0) $display("PASSED");
    $finish;
  end
endmodule
