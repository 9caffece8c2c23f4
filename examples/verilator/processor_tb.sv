// Loads a program image into the processor's memories, lets it run twice, and reads back through the library's DPI functions
// what the memories hold: after loading the image itself, bit by bit, after a run what the program must have stored.
module processor_tb;
  import marlune_dpi::*;

  localparam string CPU = "processor_tb.cpu";
  localparam int unsigned DATA_BASE = 32'h1000;
  localparam int unsigned ENTRIES = 16;  // words in the table, and sums
  localparam int unsigned CYCLE_LIMIT = 1000;
  localparam logic [31:0] POKED = 32'hA8A7A6A5;  // the table's first word in the second run

  logic        clk = 0;
  logic        reset = 1;
  logic        halted;
  logic [31:0] cycles;
  int          compared = 0, differ = 0;

  always #5 clk = !clk;

  processor #(DATA_BASE) cpu (.*);

  function automatic string bank(int unsigned number);
    return $sformatf("%s.banks[%0d].bank", CPU, number);
  endfunction

  function automatic void compare(string what, int unsigned address, word_t actual, word_t expected);
    compared++;
    if (actual !== expected) begin
      differ++;
      $display("  %s %08x: %0h instead of %0h", what, address, actual, expected);
    end
  endfunction

  function automatic logic [31:0] data_word(int unsigned index);
    for (int unsigned i = 0; i < 4; i++) data_word[8*i+:8] = 8'(peek(bank(i), index));
  endfunction

  // The image's contents, from its text form and read here without the library: the lines of 32 binary digits, the program's 32-bit words and
  // then the data's, whose leftmost eight digits are the byte of the lowest address.
  function automatic void compare_with_text(string file, int unsigned words);
    int          stream;
    string       line;
    logic [31:0] digits;
    int unsigned count;
    stream = $fopen(file, "r");
    count  = 0;
    while ($fgets(line, stream) != 0)
      if (line.len() == 33 && (line[31] == "0" || line[31] == "1")) begin  // a description ends with a letter
        void'($sscanf(line, "%b", digits));
        if (count < words) compare("program word", count, peek({CPU, ".program_memory"}, count), word_t'(digits));
        else
          for (int unsigned i = 0; i < 4; i++)
            compare("byte", DATA_BASE + 4 * (count - words) + i, peek(bank(i), count - words),
                    word_t'(digits[31-8*i-:8]));
        count++;
      end
    $fclose(stream);
    if (count != words + ENTRIES) begin
      differ++;
      $display("  %s holds %0d words instead of %0d", file, count, words + ENTRIES);
    end
    $display("  image: %0d words of program and %0d of data in four banks, read back", words, count - words);
  endfunction

  // From reset to HALT, then the sums that must stand behind the table.
  task automatic run();
    logic [31:0] sum = 0;
    reset = 1;
    repeat (2) @(negedge clk);
    reset = 0;
    while (!halted && cycles < CYCLE_LIMIT) @(negedge clk);
    reset = 1;
    for (int unsigned i = 0; i < ENTRIES; i++) begin
      sum += data_word(i);
      compare("sum at", DATA_BASE + 4 * (ENTRIES + i), word_t'(data_word(ENTRIES + i)), word_t'(sum));
    end
    $display("  run: %0d cycles, %0d sums read back, the last one is %08x", cycles, ENTRIES, sum);
  endtask

  initial begin
    string image, text;
    if ($value$plusargs("image=%s", image) == 0 || $value$plusargs("text=%s", text) == 0)
      $fatal(1, "usage: +image=FILE +text=FILE, the image to load and its text form");
    load_image({CPU, ".program_memory"}, image, "program");
    for (int unsigned i = 0; i < 4; i++) load_bank(bank(i), image, "data", i, 4, DATA_BASE);
    compare_with_text(text, 9);
    run();

    for (int unsigned i = 0; i < 4; i++) poke(bank(i), 0, word_t'(POKED[8*i+:8]));
    compare("poked word", DATA_BASE, word_t'(data_word(0)), word_t'(POKED));
    run();

    $display("%0d values compared, %0d differ", compared, differ);
    if (differ == 0 && halted) $finish;
    else $fatal(1, "the memories do not hold what they must");
  end
endmodule
