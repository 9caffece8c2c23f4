// Which mode a RAM is: each rule that docs/simulators.md gives for a design's inputs. For Icarus Verilog and Verilator,
// with a waveform.

// Equal to ordinary RTL in the mode that fits the time at which the inputs change.
module like_rtl #(parameter MODE = 0) (input clk, input [16:0] inputs);
  wire [7:0] q, data;
  wire [3:0] read_address, address;
  wire       write;
  assign {write, address, data, read_address} = inputs;
  marlune_memory #(.ADDRESS_BITS(4), .DATA_BITS(8), .MODE(MODE))
      memory (clk, 1'b1, read_address, q, write, address, data);

  reg [7:0] cells[0:15], rtl_q;
  integer i, compared = 0, different = 0;
  initial for (i = 0; i < 16; i = i + 1) cells[i] = 0;
  always @(posedge clk) begin
    rtl_q <= cells[read_address];
    if (write) cells[address] <= data;
  end
  always @(negedge clk) begin
    compared = compared + 1;
    if (q !== rtl_q) different = different + 1;
  end
endmodule

module modes_tb;
  reg clk = 0;
  always #5 clk = !clk;

  reg [16:0] at_edge = 0, after_edge = 0, at_fall = 0;
  always @(posedge clk) at_edge <= 17'($random);
  always @(posedge clk) after_edge <= #1 17'($random);
  always @(negedge clk) at_fall <= 17'($random);
  like_rtl #(1) rtl_at_edge (clk, at_edge);
  like_rtl #(0) rtl_after_edge (clk, after_edge);
  like_rtl #(0) rtl_at_fall (clk, at_fall);

  // A synchronous memory and an asynchronous one, with a shared port and a read port.
  reg        select = 0, write = 1;
  reg  [3:0] address = 1, read_address = 1;
  reg  [7:0] data = 8'h11;
  wire [7:0] q[0:1], shared_q[0:1];
  genvar mode;
  generate
    for (mode = 0; mode < 2; mode = mode + 1) begin : memories
      all_ports #(.MODE(mode)) memory (
          .CLK(clk), .a_RE0(1'b1), .a_RA0(read_address), .a_Q0(q[mode]), .d_CS0(select), .d_WE0(write), .d_A0(address),
          .d_D0(data), .d_Q0(shared_q[mode]), .b_RE0(2'd1), .b_RA0(4'd0), .b_Q0(), .c_WE0({1'b0, write}), .c_WA0(address),
          .c_D0(data), .e_RE0(1'b1), .e_RA0(4'd0), .e_WA0(4'd0), .e_CS0(2'd0), .e_WE0(1'b0), .e_D0(8'd0), .e_Q0(),
          .f_RA0(4'd0), .f_Q0(), .g_WE0(1'b0), .g_WA0(1'b0), .g_D0(1'b0));
    end
  endgenerate

  integer checks = 0, wrong = 0;

  task expect_value(input [7:0] actual, wanted);
    begin
      checks = checks + 1;
      if (actual !== wanted) begin
        wrong = wrong + 1;
        $display("check %0d at %0t: %h, not %h", checks, $time, actual, wanted);
      end
    end
  endtask

  initial begin
    $dumpfile("modes.vcd");
    $dumpvars(0, modes_tb);
    @(posedge clk) write = 0;   // a write from time 0 on that changes at the first edge is never seen
    @(negedge clk);
    write = 1;
    data = 8'h22;
    address = 2;
    @(negedge clk);
    write = 0;
    expect_value(q[0], 0);
    expect_value(q[1], 0);
    read_address = 2;  // written at the edge before
    @(negedge clk);
    expect_value(q[0], 8'h22);
    expect_value(q[1], 0);  // the first read
    @(negedge clk);
    expect_value(q[1], 8'h22);

    select = 1;
    @(negedge clk);
    select = 0;
    expect_value(shared_q[0], 8'h22);
    expect_value(shared_q[1], 0);
    @(negedge clk);
    select = 1;
    expect_value(shared_q[1], 0);  // selected for one cycle only: the word is lost
    @(negedge clk);
    expect_value(shared_q[1], 0);
    @(negedge clk);
    expect_value(shared_q[1], 8'h22);

    @(posedge clk) #1 read_address = 1;  // one change while CLK is 1 does nothing
    #1 expect_value(q[0], 8'h22);
    read_address = 3;  // another one makes a further edge
    #1 expect_value(q[0], 0);
    read_address = 2;
    @(posedge clk) #1 read_address = 3;
    @(negedge clk) expect_value(q[0], 8'h22);
    read_address = 4;  // as is one while CLK is 0 not
    #1 expect_value(q[0], 8'h22);

    #2000 $display("%0d values compared, %0d checked", rtl_at_edge.compared, checks);
    if (wrong + rtl_at_edge.different + rtl_after_edge.different + rtl_at_fall.different == 0 &&
        rtl_at_fall.compared > 200) $display("PASSED");
    $finish;
  end
endmodule
