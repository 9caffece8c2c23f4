// A bare array in C behind direct calls, in floor.cpp: what the calls alone cost. For Verilator. Mode 0 makes one call at
// the edge. Mode 1 is the simplest module that keeps the rules of edges: a call once the registers of the edge have
// changed, and one for each later change in its time.
module floor_memory #(
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
  import "DPI-C" function void floor_step(
      input chandle memory, input bit tick, input bit [2*ADDRESS_BITS+DATA_BITS+1:0] inputs,
      output bit [DATA_BITS-1:0] q);

  chandle memory = floor_open();

  generate
    if (MODE == 0) begin : at_edge
      always @(posedge CLK) r_Q0 <= floor_edge(memory, r_RE0, 32'(r_RA0), w_WE0, 32'(w_WA0), w_D0);
    end else begin : late
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
    end
  endgenerate

endmodule
