// Loads program.s into the processor's memories, lets it run several times with other parameters, and compares what it
// leaves in them with what is computed here.
//
//   +program=FILE +data=FILE  the images to load. Without them the memories hold what the command line gave them.
//   +runs=N                   how many runs, 2 if not given
//   +unchecked                runs another program once, and compares nothing
//   +limit=N                  the cycles after which a run is given up, a million if not given
module processor_tb;
  localparam [31:0] DATA_BASE = 32'h0001_0000;

  logic        clk = 0;
  logic        reset = 1;
  logic        halted, trapped;
  logic [31:0] pc;

  always #5 clk = !clk;

  processor #(.DATA_BASE(DATA_BASE)) cpu (.clk(clk), .reset(reset), .halted(halted), .trapped(trapped), .pc(pc));

  // ---- The way into the memories: system tasks in Icarus Verilog, DPI elsewhere ----

  string program_file, data_file;

`ifdef NATIVE  // memories with functions and tasks of their own; the files are those of $readmemh

  logic [31:0] words[0:4095];
  logic [ 7:0] bytes[0:16383];

  task automatic load;
    $readmemh(program_file, words);
    $readmemh(data_file, bytes);
    for (int i = 0; i < 4096; i++) cpu.program_memory.poke(i, words[i]);
    for (int i = 0; i < 16384; i++) poke_byte(i, bytes[i]);
  endtask

  function automatic [7:0] peek_byte(input [31:0] offset);
    case (offset[1:0])
      2'd0: peek_byte = cpu.banks[0].bank.peek(offset >> 2);
      2'd1: peek_byte = cpu.banks[1].bank.peek(offset >> 2);
      2'd2: peek_byte = cpu.banks[2].bank.peek(offset >> 2);
      default: peek_byte = cpu.banks[3].bank.peek(offset >> 2);
    endcase
  endfunction

  task automatic poke_byte(input [31:0] offset, input [7:0] value);
    case (offset[1:0])
      2'd0: cpu.banks[0].bank.poke(offset >> 2, value);
      2'd1: cpu.banks[1].bank.poke(offset >> 2, value);
      2'd2: cpu.banks[2].bank.poke(offset >> 2, value);
      default: cpu.banks[3].bank.poke(offset >> 2, value);
    endcase
  endtask

`else

  string bank;

  function automatic string bank_at(input [31:0] offset);
    bank_at = $sformatf("processor_tb.cpu.banks[%0d].bank", offset[1:0]);
  endfunction

`ifdef __ICARUS__

  logic [7:0] peeked;

  task automatic load;
    $marlune_load_image("processor_tb.cpu.program_memory", program_file, "program");
    for (int i = 0; i < 4; i++) begin
      bank = bank_at(i);
      $marlune_load_bank(bank, data_file, "data", i, 4, DATA_BASE);
    end
  endtask

  function [7:0] peek_byte(input [31:0] offset);
    bank = bank_at(offset);
    $marlune_peek(bank, offset >> 2, peeked);
    peek_byte = peeked;
  endfunction

  task automatic poke_byte(input [31:0] offset, input [7:0] value);
    bank = bank_at(offset);
    $marlune_poke(bank, offset >> 2, value);
  endtask

`else

  import marlune_dpi::*;

  task automatic load;
    load_image("processor_tb.cpu.program_memory", program_file, "program");
    for (int i = 0; i < 4; i++) load_bank(bank_at(i), data_file, "data", i, 4, DATA_BASE);
  endtask

  function automatic [7:0] peek_byte(input [31:0] offset);
    peek_byte = 8'(peek(bank_at(offset), offset >> 2));
  endfunction

  task automatic poke_byte(input [31:0] offset, input [7:0] value);
    poke(bank_at(offset), offset >> 2, word_t'(value));
  endtask

`endif
`endif

  function automatic [31:0] peek_word(input [31:0] offset);
    peek_word = {peek_byte(offset + 3), peek_byte(offset + 2), peek_byte(offset + 1), peek_byte(offset)};
  endfunction

  // ---- What program.s has in its data: parameters with their first values, and results. Offsets from DATA_BASE. ----

  localparam [31:0] SEED_AT = 'h00, BOARD_AT = 'h04, TEXT_AT = 'h08;
  localparam [31:0] TEXT_LENGTH_AT = 'h80, TEXT_CRC_AT = 'h84, TABLE_CRC_AT = 'h88, SIGNED_BYTES_AT = 'h8C,
      BYTES_AT = 'h90, SIGNED_HALVES_AT = 'h94, HALVES_AT = 'h98, ARITHMETIC_AT = 'h9C, PLACEMENTS_AT = 'hA0,
      SHOUTED_AT = 'hC1, TABLE_AT = 'h100, SWAPPED_AT = 'h180;
  localparam int COUNT = 32, ROUNDS = 32, TEXT_LENGTH = 59;

  logic [31:0] seed = 32'h2545F491;
  int          board = 6;
  logic [8*TEXT_LENGTH-1:0] text = "A cell holds what was last written to it: no more, no less.";

  function automatic [7:0] character(input int index);
    character = text[8*(TEXT_LENGTH-1-index)+:8];
  endfunction

  // ---- The same computations ----

  logic [31:0] sorted[0:COUNT-1];

  function automatic [31:0] crc_with(input [31:0] crc, input [7:0] next);
    crc_with = crc ^ {24'h0, next};
    for (int i = 0; i < 8; i++) crc_with = crc_with[0] ? (crc_with >> 1) ^ 32'hEDB88320 : crc_with >> 1;
  endfunction

  task automatic make_table;
    logic [31:0] x;
    int place;
    x = seed;
    for (int i = 0; i < COUNT; i++) begin
      x ^= x << 13;
      x ^= x >> 17;
      x ^= x << 5;
      for (place = i; place > 0 && $signed(sorted[place-1]) > $signed(x); place--) sorted[place] = sorted[place-1];
      sorted[place] = x;
    end
  endtask

  function automatic [31:0] folded(input int bytes, input is_signed);
    logic [31:0] value;
    folded = 0;
    for (int i = 0; i < 4 * COUNT; i += bytes) begin
      value = sorted[i/4] >> 8 * (i % 4);
      if (bytes == 1) value = {{24{value[7] && is_signed}}, value[7:0]};
      else value = {{16{value[15] && is_signed}}, value[15:0]};
      folded = {folded[30:0], folded[31]} + value;
    end
  endfunction

  function automatic [31:0] calculated(input [31:0] start);
    logic [31:0] x, y, next, shifted_by_y, shifted_by_5;
    x = start;
    y = 32'h9E377000;
    for (int i = 0; i < ROUNDS; i++) begin
      shifted_by_y = $signed(x) >>> y[4:0];  // by itself: beside an operand without sign it would have none either
      shifted_by_5 = $signed(y) >>> 5;
      next = (x + y) ^ ($signed(x) < $signed(y) ? 32'h80 : 0) ^ (x < y ? 32'h80000 : 0);
      next ^= shifted_by_y - (y >> x[4:0]);
      next += (y << x[4:0]) & x;
      next ^= ((shifted_by_5 ^ 32'h555 | 32'h123) & -1000) - ($signed(x) < -100 ? 1 : 0) + (y < 32'hFFFFF830 ? 1 : 0);
      y = x;
      x = next;
    end
    calculated = x;
  endfunction

  function automatic [31:0] placements(input int rows);  // as they are known
    case (rows)
      4: placements = 2;
      5: placements = 10;
      default: placements = 4;
    endcase
  endfunction

  // ---- Runs ----

  int compared = 0, differ = 0;
  int cycles, all_cycles = 0, runs, limit;

  task automatic compare(input string what, input [31:0] offset, input [31:0] actual, input [31:0] expected);
    compared++;
    if (actual !== expected) begin
      differ++;
      if (differ <= 10) $display("  %s at %h is %h and not %h", what, DATA_BASE + offset, actual, expected);
    end
  endtask

  task automatic compare_byte(input string what, input [31:0] offset, input [7:0] expected);
    compare(what, offset, {24'h0, peek_byte(offset)}, {24'h0, expected});
  endtask

  task automatic compare_word(input string what, input [31:0] offset, input [31:0] expected);
    compare(what, offset, peek_word(offset), expected);
  endtask

  task automatic compare_parameters;
    compare_word("seed", SEED_AT, seed);
    compare_word("board", BOARD_AT, board);
    for (int i = 0; i < TEXT_LENGTH; i++) compare_byte("text", TEXT_AT + i, character(i));
  endtask

  task automatic compare_results;
    logic [31:0] crc;
    logic [7:0] shouted;
    crc = '1;
    for (int i = 0; i < TEXT_LENGTH; i++) begin
      shouted = character(TEXT_LENGTH - 1 - i);
      if (shouted >= "a" && shouted <= "z") shouted -= "a" - "A";
      compare_byte("shouted", SHOUTED_AT + i, shouted);
      crc = crc_with(crc, character(i));
    end
    compare_word("text_length", TEXT_LENGTH_AT, TEXT_LENGTH);
    compare_word("text_crc", TEXT_CRC_AT, ~crc);
    make_table();
    crc = '1;
    for (int i = 0; i < COUNT; i++) begin
      compare_word("table", TABLE_AT + 4 * i, sorted[i]);
      compare_word("swapped", SWAPPED_AT + 4 * i, {sorted[i][15:0], sorted[i][31:16]});
      for (int j = 0; j < 4; j++) crc = crc_with(crc, sorted[i][8*j+:8]);
    end
    compare_word("table_crc", TABLE_CRC_AT, ~crc);
    compare_word("signed_bytes", SIGNED_BYTES_AT, folded(1, 1));
    compare_word("bytes", BYTES_AT, folded(1, 0));
    compare_word("signed_halves", SIGNED_HALVES_AT, folded(2, 1));
    compare_word("halves", HALVES_AT, folded(2, 0));
    compare_word("arithmetic", ARITHMETIC_AT, calculated(seed));
    compare_word("placements", PLACEMENTS_AT, placements(board));
  endtask

  // From reset until the processor stops.
  task automatic run;
    reset = 1;
    repeat (2) @(negedge clk);
    reset = 0;
    cycles = 0;
    while (!halted && !trapped && cycles < limit) begin
      @(negedge clk);
      cycles++;
    end
    all_cycles += cycles;
    if (trapped)
      $fatal(1, "The processor cannot execute the instruction %h at %h. Are the memories loaded?", cpu.instruction, pc);
    if (!halted) $fatal(1, "The program has not ended after %0d cycles; it is at %h.", cycles, pc);
  endtask

  // Other parameters, for the run of a number from 1 on.
  task automatic change_parameters(input int number);
    int index;
    index = number * 7 % TEXT_LENGTH;
    seed  = seed + 32'h9E3779B9;
    board = 4 + number % 3;
    text[8*(TEXT_LENGTH-1-index)+:8] = 8'("a" + number % 26);
    for (int i = 0; i < 4; i++) begin
      poke_byte(SEED_AT + i, seed[8*i+:8]);
      poke_byte(BOARD_AT + i, board[8*i+:8]);
    end
    poke_byte(TEXT_AT + index, character(index));
  endtask

  initial begin
    if ($value$plusargs("runs=%d", runs) == 0) runs = 2;
    if ($value$plusargs("limit=%d", limit) == 0) limit = 1_000_000;
    if ($value$plusargs("program=%s", program_file) != 0 && $value$plusargs("data=%s", data_file) != 0) load();
    if ($test$plusargs("unchecked") != 0) begin
      runs = 1;
      run();
    end else for (int i = 0; i < runs; i++) begin
      if (i > 0) change_parameters(i);
      compare_parameters();
      if (differ == 0) begin
        run();
        compare_results();
      end
      if (differ > 0) $fatal(1, "%0d of %0d values differ.", differ, compared);
    end
    $display("  runs: %0d, cycles: %0d, values compared: %0d, differ: 0", runs, all_cycles, compared);
    $finish;
  end
endmodule
