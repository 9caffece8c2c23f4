// Icarus Verilog runs memories through the bridge: instances in a generate block, asynchronous and synchronous, the widest
// data there is, inputs that change in the edge's own time step, and an address that follows Q0 within it.
`timescale 1ns / 1ps
module icarus_tb;
  localparam CYCLES = 2000;

  reg           clk = 0;
  reg           write = 0;
  reg  [3:0]    read_address = 0, write_address = 0;
  reg  [1023:0] data = 0;
  wire [1023:0] q[0:1];
  wire [7:0]    chained;
  integer       compared = 0, wrong = 0, cycle, bits;

  always #5 clk = !clk;

  genvar g;
  generate
    for (g = 0; g < 2; g = g + 1) begin : memories
      localparam [7:0] SYNCHRONOUS = "0" + g;
      marlune_memory #(4, 1024, {SYNCHRONOUS, " 1024 16"})
          memory (clk, 1'b1, read_address, q[g], write, write_address, data);
    end
  endgenerate

  // reads where the asynchronous memory's data points to; holds the low bits of the same data
  marlune_memory #(4, 8, "0 8 16") chain (clk, 1'b1, q[0][3:0], chained, write, write_address, data[7:0]);

  // The rules again: the write recorded at the edge before is committed first, and what counts is the inputs' last value at
  // the edge's time.
  reg  [1023:0] cells[0:15];
  reg  [1023:0] expected[0:1], sampled = 0, recorded_data = 0;
  reg           recorded = 0;
  reg  [3:0]    recorded_address = 0;

  task compare(input [1023:0] actual, wanted);
    begin
      compared = compared + 1;
      if (actual !== wanted) begin
        wrong = wrong + 1;
        $display("cycle %0d: %h instead of %h", cycle, actual, wanted);
      end
    end
  endtask

  initial begin
    for (cycle = 0; cycle < 16; cycle = cycle + 1) cells[cycle] = 0;
    for (cycle = 0; cycle < CYCLES; cycle = cycle + 1) begin
      @(posedge clk);
      write = $random;
      read_address <= $random;
      write_address = $random;
      for (bits = 0; bits < 1024; bits = bits + 32) data[bits +: 32] = $random;
      #1;
      if (recorded) cells[recorded_address] = recorded_data;
      expected[0] = cells[read_address];
      expected[1] = sampled;
      sampled = cells[read_address];
      recorded = write;
      recorded_address = write_address;
      recorded_data = data;
      compare(q[0], expected[0]);
      compare(q[1], expected[1]);
      compare(chained, cells[expected[0][3:0]][7:0]);
    end
    $display("%0d values compared, %0d differ", compared, wrong);
    if (wrong == 0) $display("PASSED");
    $finish;
  end
endmodule
