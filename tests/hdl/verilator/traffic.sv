// The same random traffic for memories of many shapes, served by direct calls and by a model that has nothing in common
// with the library but the rules. Outputs are compared at the end of each time.
`timescale 1ns / 1ps

package traffic_types;
  typedef struct packed {
    bit [8:0]       flags;
    bit [3:0][3:0]  nibbles;   // addresses, over and over
    bit [1:0][12:0] data;      // over and over; 0 for a 1
  } stimulus_t;
endpackage

// A memory of one shape and its model. `check` changes at the end of each time.
module shape #(
    parameter A = 4,
    parameter D = 8,
    parameter bit SYNCHRONOUS = 0,
    parameter LAU = 8,
    parameter bit [31:0] CELLS = 16
) (
    input traffic_types::stimulus_t stimulus,
    input bit clk,
    input bit was_high,     // CLK when the inputs changed
    input bit rose,         // CLK has at this time
    input bit rose_first,   // before the inputs changed
    input bit check,
    input realtime now
);
  typedef struct packed {
    bit         d_cs, d_we;
    bit [1:0]   c_we;
    bit [A-1:0] a_ra, b_ra, c_wa, d_a;
    bit [D-1:0] c_d, d_d;
  } inputs_t;
  typedef struct packed {
    bit [D-1:0] a, d;
    bit         b;
  } outputs_t;

  function automatic bit [D-1:0] data_of(bit [12:0] bits);
    return bits == 0 ? D'(1) : D'({79{bits}});
  endfunction

  // Feedback: from a's data to b's address and c's data, and from b's data to d's address.
  function automatic inputs_t inputs_of(traffic_types::stimulus_t s, outputs_t q);
    bit [3:0] b_nibble = s.flags[6] ? 4'(q.a) : s.nibbles[1];
    bit [3:0] d_nibble = s.flags[8] ? 4'(q.b) : s.nibbles[3];
    return '{
        s.flags[1], s.flags[2], s.flags[4:3], A'({8{s.nibbles[0]}}), A'({8{b_nibble}}), A'({8{s.nibbles[2]}}),
        A'({8{d_nibble}}), s.flags[7] ? ~q.a : data_of(s.data[0]), data_of(s.data[1])};
  endfunction

  wire outputs_t q;
  wire inputs_t i;
  assign i = inputs_of(stimulus, q);
  all_ports #(A, D, $sformatf("%0d %0d %0d", SYNCHRONOUS, LAU, CELLS)) memory (
      clk, stimulus.flags[0], i.a_ra, q.a, {2{stimulus.flags[5]}}, i.b_ra, q.b, i.c_we, i.c_wa, i.c_d,
      i.d_cs, i.d_we, i.d_a, i.d_d, q.d);

  // ---- The model ----

  bit [D-1:0] cells[bit [31:0]];
  bit [D-1:0] samples[3], driven[3], written[2];
  bit [1:0]   pending;
  bit [31:0]  written_at[2];
  outputs_t   expected;
  inputs_t    earlier;
  bit         was_edge;

  function automatic bit [D-1:0] read(int port, bit [31:0] address);
    samples[port] = address < CELLS && cells.exists(address) != 0 ? cells[address] : '0;
    return SYNCHRONOUS ? driven[port] : samples[port];
  endfunction

  function automatic void write(int port, bit enabled, bit [31:0] address, bit [D-1:0] value);
    pending[port] = enabled;
    written_at[port] = address;
    written[port] = CELLS != 32'hFFFF_FFFF && LAU <= 64 ? D'(64'(value)) : value;
  endfunction

  function automatic void serve(inputs_t i);
    expected.a = read(0, 32'(i.a_ra));
    expected.b = 1'(read(1, 32'(i.b_ra)));
    if (i.d_cs) expected.d = read(2, 32'(i.d_a));
    write(0, i.c_we == 1, 32'(i.c_wa), i.c_d);
    write(1, i.d_cs && i.d_we, 32'(i.d_a), i.d_d);
  endfunction

  function automatic void begin_edge();
    driven = samples;
    samples = '{default: '0};
    for (int port = 0; port < 2; port++)
      if (pending[port] && written_at[port] < CELLS) cells[written_at[port]] = written[port];
    pending = 0;
  endfunction

  // What counts is whether CLK has risen, not the order of its change and the inputs'. At such an edge the inputs from
  // before it are served first, and then those that it ends with.
  function automatic void evaluate();
    bit has_changed = inputs_of(stimulus, expected) != earlier;
    bit is_edge = now > 0 && (rose || (was_high && !was_edge && has_changed));
    if (rose || !clk || has_changed) was_edge = is_edge;
    if (is_edge) begin
      begin_edge();
      if (rose_first) serve(earlier);
      for (int i = 0; i < 4; i++) serve(inputs_of(stimulus, expected));
    end
    earlier = inputs_of(stimulus, expected);
  endfunction

  int compared, different, changes;
  outputs_t q_before;

  always @(check) begin
    evaluate();
    compared++;
    if (q != q_before) changes++;
    q_before = q;
    if (q != expected) begin
      different++;
      if (different <= 3) $display("%m, %0t: %h, not %h", now, q, expected);
    end
  end
endmodule

module traffic;
  import traffic_types::*;
  parameter TIMES = 10000;

  // CLK and the inputs have parts that change at once, by a nonblocking assignment, and in registers.
  bit        clk_at_once, clk_later, was_high, rose, rose_first, check;
  stimulus_t at_once, later, registered, registered_next;
  wire       clk = clk_at_once ^ clk_later;
  realtime   now;

  always @(posedge clk) registered <= registered_next;

  localparam COUNT = 8;
  localparam bit [COUNT-1:0][4:0][31:0] SHAPES = '{
      '{32'd4, 32'd1, 32'd0, 32'd1, 32'd16}, '{32'd4, 32'd8, 32'd1, 32'd8, 32'd16},
      '{32'd5, 32'd33, 32'd0, 32'd33, 32'd30}, '{32'd6, 32'd64, 32'd1, 32'd64, 32'd64},
      '{32'd4, 32'd65, 32'd0, 32'd65, 32'd16}, '{32'd4, 32'd128, 32'd1, 32'd8, 32'd16},
      '{32'd4, 32'd1024, 32'd0, 32'd1024, 32'd16}, '{32'd32, 32'd128, 32'd1, 32'd8, 32'hFFFF_FFFF}};
  int compared[COUNT], different[COUNT];
  bit [COUNT-1:0] is_busy;

  for (genvar s = 0; s < COUNT; s++) begin : shapes
    shape #(SHAPES[s][4], SHAPES[s][3], 1'(SHAPES[s][2]), SHAPES[s][1], SHAPES[s][0])
        shape (at_once ^ later ^ registered, clk, was_high, rose, rose_first, check, now);
    assign compared[s] = shape.compared;
    assign different[s] = shape.different;
    assign is_busy[s] = shape.changes > TIMES / 20;
  end

  bit [63:0] state = 1;

  function automatic bit [31:0] random(bit [31:0] limit);
    state = state * 64'd6364136223846793005 + 64'd1442695040888963407;
    return 32'((64'(state[63:32]) * 64'(limit)) >> 32);
  endfunction

  // What of the inputs changes, as a difference.
  function automatic stimulus_t change();
    stimulus_t present = at_once ^ later ^ registered;
    change = '0;
    for (int i = 0; i < 9; i++) change.flags[i] = random(6) == 0;
    for (int i = 0; i < 4; i++) if (random(3) == 0) change.nibbles[i] = 4'(random(16));
    for (int i = 0; i < 2; i++)
      if (random(3) == 0) change.data[i] = random(4) == 0 ? present.data[i] : 13'(random(8192));
  endfunction

  int times;

  always begin   // an initial block would assign everything at once
    stimulus_t difference = random(3) == 0 ? '0 : change();
    bit        was_one = clk;
    bit        rose_later;
    bit [31:0] clock_way = random(6);
    bit [31:0] input_way = random(3);
    now = $realtime;
    registered_next = registered;
    if (times == 0) clock_way = 0;
    rose = clock_way == 2 || (!was_one && clock_way <= 3);
    rose_later = clock_way == 3 || (clock_way == 2 && was_one);
    rose_first = rose && (input_way == 2 || (input_way == 1 && !rose_later));
    if (clock_way == 0) clk_at_once = !clk_at_once;
    if (input_way == 0) at_once ^= difference;
    if (clock_way == 1 || clock_way == 2) clk_at_once = !clk_at_once;
    was_high = clk_at_once ^ clk_later ^ (input_way == 1 && (clock_way == 2 || clock_way == 3));
    if (input_way == 1) later <= later ^ difference;
    if (input_way == 2 && rose) registered_next ^= difference;
    if (clock_way == 2 || clock_way == 3) clk_later <= !clk_later;   // with 2, a pulse of no width
    #0.001 check = !check;
    #(0.001 * (1 + random(3)));
    times++;
    if (times == TIMES) begin
      $display("%0d values compared, %0d differ", compared.sum(), different.sum());
      if (different.sum() == 0 && compared.sum() >= COUNT * TIMES && &is_busy) $display("PASSED");
      $finish;
    end
  end
endmodule
