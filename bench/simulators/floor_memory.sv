// Arrays in C behind direct calls, in floor.cpp: what the calls alone cost. For Verilator.

// One call at the clock edge.
module single_call_memory #(
    parameter ADDRESS_BITS = 10,
    parameter DATA_BITS = 32,
    parameter MODE = 0
) (
    input                         CLK,
    input                         r_RE0,
    input      [ADDRESS_BITS-1:0] r_RA0,
    output bit [DATA_BITS-1:0]    r_Q0,
    input                         w_WE0,
    input      [ADDRESS_BITS-1:0] w_WA0,
    input      [DATA_BITS-1:0]    w_D0
);

  import "DPI-C" function chandle floor_open();
  import "DPI-C" function int unsigned floor_edge(
      input chandle memory, input bit read, input int unsigned read_address, input bit write,
      input int unsigned write_address, input int unsigned data);

  chandle memory = floor_open();
  always @(posedge CLK) r_Q0 <= floor_edge(memory, r_RE0, 32'(r_RA0), w_WE0, 32'(w_WA0), w_D0);

endmodule

// A call when the registers of the edge have changed, and one for each later change in its time: the simplest module
// that keeps the rules of edges.
module late_call_memory #(
    parameter ADDRESS_BITS = 10,
    parameter DATA_BITS = 32,
    parameter MODE = 0
) (
    input                         CLK,
    input                         r_RE0,
    input      [ADDRESS_BITS-1:0] r_RA0,
    output bit [DATA_BITS-1:0]    r_Q0,
    input                         w_WE0,
    input      [ADDRESS_BITS-1:0] w_WA0,
    input      [DATA_BITS-1:0]    w_D0
);

  import "DPI-C" function chandle floor_open();
  import "DPI-C" function void floor_step(
      input chandle memory, input bit tick, input bit [2*ADDRESS_BITS+DATA_BITS+1:0] inputs,
      output bit [DATA_BITS-1:0] q);

  chandle memory = floor_open();
  bit tick;
  bit [DATA_BITS-1:0] q;
  realtime edge_time = -1;

  always @(posedge CLK) begin
    tick <= !tick;
    edge_time = $realtime;
  end

  always @(tick, r_RE0, r_RA0, w_WE0, w_WA0, w_D0)
    if (edge_time == $realtime) begin
      floor_step(memory, tick, {r_RE0, r_RA0, w_WE0, w_WA0, w_D0}, q);
      r_Q0 = q;
    end

endmodule
