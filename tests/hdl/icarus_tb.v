// Icarus Verilog runs memories through the bridge: the widest data there is in both modes, inputs that change in the
// edge's own time step, an address that follows Q0 within it, outputs in all kinds of expressions, the system tasks.
module pass #(parameter BITS = 8) (input [BITS-1:0] in, output [BITS-1:0] out);
  assign out = in;
endmodule

module icarus_tb;
  reg           clk = 0, write = 0;
  reg  [3:0]    read_address = 0, write_address = 0;
  reg  [1023:0] data = 0;
  wire [1023:0] q[0:1];
  wire [7:0]    chained;
  integer       compared = 0, wrong = 0, cycle;

  always #5 clk = !clk;

  genvar g;
  generate
    for (g = 0; g < 2; g = g + 1) begin : memories
      marlune_memory #(.ADDRESS_BITS(4), .DATA_BITS(1024), .MODE(g))
          memory (clk, 1'b1, read_address, q[g], write, write_address, data);
    end
  endgenerate

  // reads where the asynchronous memory's data points to; holds the low bits of the same data
  marlune_memory #(4, 8, "0 8 16") chain (clk, 1'b1, q[0][3:0], chained, write, write_address, data[7:0]);

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
  pass #(16) port ({q[1][7:0], chained}, through_port);
  pass #(8) array[1:0] ({q[1][7:0], chained}, through_array);
  assign nets[0] = {q[1][7:0], chained};
  assign nets[1] = {8'h0, chained};
  assign nets[2] = chained;
  assign nets[3] = {2{chained}};
  assign nets[4] = chained * q[1][7:0];

  task compare_forms;
    begin
      x = chained;
      y = q[1];
      compare({through_port, through_array, nets[0], nets[1]}, {{3{y, x}}, 8'h0, x});
      compare({nets[2], nets[3], nets[4]}, {8'h0, x, x, x, {8'h0, x} * {8'h0, y}});
    end
  endtask

  // Memories for the system tasks: of the default parameters, in an array, and with an odd name.
  wire [127:0] wide_q;
  marlune_memory #(10, 128) wide (clk, 1'b1, 10'd7, wide_q, write, 10'd7, {8{16'hABCD}});
  marlune_memory #(4, 8) rows[1:0] (clk, 1'b1, 4'd0, , 1'b0, 4'd0, 8'd0);
  marlune_memory #(32, 8) \odd.name+[3] (clk, 1'b1, 32'd0, , 1'b0, 32'd0, 8'd0);

  integer      address;
  reg [7:0]    cell_value;
  reg [63:0]   image, bank;
  reg [1031:0] longest;

  initial begin
    $marlune_load_image("icarus_tb.rows[0]", "image.vexon", "data", 4096);
    $marlune_load_bank("/ICARUS_TB/rows[1]", "image.vexon", "data", 1, 2, 'h1000);
    for (address = 0; address < 8; address = address + 1) begin
      $marlune_peek("icarus_tb:rows[0]:", address, cell_value);
      image[8*address +: 8] = cell_value;
      $marlune_peek("icarus_tb.rows[1]", address, cell_value);
      bank[8*address +: 8] = cell_value;
    end
    compare(image, 64'h5566778811223344);
    compare(bank, 64'h55771133);
    $marlune_poke("icarus_tb.odd.name+[3]", 32'hFFFFFFFE, 12'h7A1);
    $marlune_peek("icarus_tb.odd.name+[3]", 32'hFFFFFFFE, longest);
    compare(longest, 8'hA1);
    $marlune_poke("icarus_tb.memories[1].memory", 15, {1032'hF, 1016'h1XZ2});
    $marlune_peek("icarus_tb.memories[1].memory", 15, longest);
    compare(longest[1023:0], {8'hF, 1016'h1002});
    compare(longest[1031:1024], 0);
    $marlune_poke("icarus_tb.memories[1].memory", 15, 0);
    $marlune_poke("icarus_tb.wide", 3, {bank[7:0], image[31:0]}); // Icarus gives more bits than these 40
    $marlune_peek("icarus_tb.wide", 3, longest);
    compare(longest, 40'h3311223344);
  end

  // The write recorded at the edge before is committed first; what counts is the inputs' last value at the edge's time.
  reg  [1023:0] cells[0:15], sampled = 0, asynchronous, recorded_data;
  reg           recorded = 0;
  reg  [3:0]    recorded_address;

  initial begin
    for (cycle = 0; cycle < 16; cycle = cycle + 1) cells[cycle] = 0;
    for (cycle = 0; cycle < 2000; cycle = cycle + 1) begin
      @(posedge clk);
      {write, write_address} = $random;
      read_address <= $random;
      data = {8{$random, $random, $random, $random}};
      #1;
      if (recorded) cells[recorded_address] = recorded_data;
      {recorded, recorded_address, recorded_data} = {write, write_address, data};
      asynchronous = cells[read_address];
      compare(q[0], asynchronous);
      compare(q[1], sampled);
      compare(chained, cells[asynchronous[3:0]][7:0]);
      compare_forms;
      sampled = asynchronous;
    end
    compare(wide_q, {8{16'hABCD}});
    $display("%0d values compared, %0d differ", compared, wrong);
    if (wrong == 0) $display("PASSED");
    $finish;
  end
endmodule
