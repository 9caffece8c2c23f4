// Which mode is a RAM: the rows of the table in docs/memories.md, and what differs from an array there. With the widest
// data there is, and an address that follows an output. For two simulators, with a waveform.

module ports #(parameter MODE = 0, BITS = 8) (
    input clk, input [3:0] read_address, output [BITS-1:0] q,
    input write, input [3:0] write_address, input [BITS-1:0] data,
    input select, shared_write, input [3:0] address, output [BITS-1:0] shared_q);
  all_ports #(.DATA_BITS(BITS), .MODE(MODE)) memory (
      clk, 1'b1, read_address, q, 2'd1, 4'd0, , {1'b0, write}, write_address, data,
      select, shared_write, address, ~data, shared_q);
endmodule

// The memory beside the RTL that it replaces.
module like_rtl #(parameter MODE = 0, ASSIGNED = 0, BITS = 8) (input clk, input [22:0] inputs);
  wire [BITS-1:0] q, shared_q;
  wire [7:0]      digits;
  wire [3:0]      read_address, write_address, address;
  wire            write, select, shared_write;
  assign {select, shared_write, address, write, write_address, digits, read_address} = inputs;
  wire [BITS-1:0] data = {(BITS / 8){digits}} * {(BITS / 8){8'hB1}};  // no two bytes are the same
  ports #(MODE, BITS) memory (
      clk, read_address, q, write, write_address, data, select, shared_write, address, shared_q);

  reg [BITS-1:0] cells[0:15], read, shared_read;
  integer i, compared = 0, different = 0;
  initial for (i = 0; i < 16; i = i + 1) cells[i] = 0;
  always @(posedge clk) begin
    read <= cells[read_address];
    if (write) cells[write_address] <= data;
    if (select) begin
      if (shared_write) cells[address] <= ~data;
      shared_read <= cells[address];
    end
  end
  wire [BITS-1:0] rtl_q = ASSIGNED != 0 ? cells[read_address] : read;
  wire [BITS-1:0] rtl_shared_q = ASSIGNED != 0 ? cells[address] : shared_read;

  always @(negedge clk) begin
    compared = compared + 1;
    if (q !== rtl_q || shared_q !== rtl_shared_q) different = different + 1;
  end
endmodule

module modes_tb;
  localparam [22:0] SELECT = 23'h400000;
  reg clk = 0, divided = 0;
  always #5 clk = !clk;

  reg [22:0] at_edge = 0, after_edge = 0, at_fall = 0;
  always @(posedge clk) divided <= !divided;
  always @(posedge clk) at_edge <= 23'($random);
  always @(posedge clk) after_edge <= #1 23'($random);
  always @(negedge clk) at_fall <= 23'($random);
  like_rtl #(1) rtl_at_edge (clk, at_edge | SELECT);
  like_rtl #(0, 1) rtl_assigned (clk, at_edge | SELECT);
  like_rtl #(0) rtl_after_edge (clk, after_edge);
  like_rtl #(0) rtl_at_fall (clk, at_fall);
  like_rtl #(0) rtl_divided (divided, at_edge);
  like_rtl #(1, 0, 1024) wide_at_edge (clk, at_edge | SELECT);
  like_rtl #(0, 1, 1024) wide_assigned (clk, at_edge | SELECT);
  like_rtl #(0, 1) chained (clk, {at_edge[22:4], rtl_assigned.q[3:0]} | SELECT);

  reg        select = 0, write = 1;
  reg  [3:0] address = 1, read_address = 1;
  reg  [7:0] data = 8'h11;
  wire [7:0] q[0:1], shared_q[0:1];
  ports #(0) asynchronous (clk, read_address, q[0], write, address, data, select, write, address, shared_q[0]);
  ports #(1) synchronous (clk, read_address, q[1], write, address, data, select, write, address, shared_q[1]);

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
    $dumpvars(0, rtl_at_edge);
    @(posedge clk) write = 0;  // a write from time 0 on that changes at the first edge is never seen
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
    expect_value(q[1], 0);
    @(negedge clk) expect_value(q[1], 8'h22);

    select = 1;
    @(negedge clk) expect_value(shared_q[0], 8'h22);
    select = 0;
    @(negedge clk) select = 1;
    @(negedge clk) expect_value(shared_q[1], 0);  // selected for one cycle only: the word is lost
    @(negedge clk) expect_value(shared_q[1], 8'h22);

    @(posedge clk) #1 read_address = 1;  // one change while CLK is 1 does nothing
    #1 expect_value(q[0], 8'h22);
    read_address = 3;  // another one makes a further edge
    #1 expect_value(q[0], 0);
    read_address = 2;
    @(posedge clk) #1 read_address = 3;
    @(negedge clk) expect_value(q[0], 8'h22);
    read_address = 4;  // one while CLK is 0 does not
    #1 expect_value(q[0], 8'h22);

    #20000 $display("%0d values compared, %0d checked", 2 * rtl_at_edge.compared, checks);
    wrong = wrong + rtl_at_edge.different + rtl_assigned.different + rtl_after_edge.different + rtl_at_fall.different +
        rtl_divided.different + wide_at_edge.different + wide_assigned.different + chained.different;
    if (wrong == 0 && rtl_divided.compared > 1000) $display("PASSED");
    $finish;
  end
endmodule
