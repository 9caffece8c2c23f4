-- Five memories of different shapes under random traffic. Every Q0 is compared with the reference model at every edge
-- of the clock: after a rising edge with what the model reads, at the falling edge that it still holds.

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;
use std.env.finish;
use std.textio.all;
use work.marlune_testbench.all;
use work.random_numbers.all;
use work.reference_memory.all;

entity memory_tb is
  generic (
    CYCLES : positive := 20_000;
    IMAGE  : string := "source/examples/vhdl/squares.vexon");
end entity;

architecture test of memory_tb is

  -- The inputs of a read and a write port of any width. A shared port takes read_address for its address, and has a
  -- signal beside these for its chip select.
  type port_inputs is record
    enable        : std_logic;   -- of the write
    read_address  : cell_address;
    write_address : cell_address;
    data          : word;
  end record;
  constant IDLE : port_inputs := ('0', (others => '0'), (others => '0'), (others => '0'));

  signal clk : std_logic := '0';

  signal dense, sync, many, many_shared, wide, sparse : port_inputs := IDLE;
  signal many_select, wide_select                     : std_logic := '0';
  signal many_b_address                               : std_logic_vector(8 downto 0);

  signal dense_q                      : std_logic_vector(31 downto 0);
  signal sync_q                       : std_logic_vector(23 downto 0);
  signal many_a_q, many_b_q, many_d_q : std_logic_vector(15 downto 0);
  signal wide_q                       : std_logic_vector(127 downto 0);
  signal sparse_q                     : std_logic_vector(7 downto 0);

  shared variable dense_model, sync_model, many_model, wide_model, sparse_model : memory;

begin

  -- Its address ports reach twice as far as its cells: the test ends with accesses out of range.
  dense_memory : entity work.marlune_memory
    generic map (ADDRESS_BITS => 11, DATA_BITS => 32, PARAMETERS => "0 32 1024")
    port map (clk,
              '0', std_logic_vector(dense.read_address(10 downto 0)), dense_q,
              dense.enable, std_logic_vector(dense.write_address(10 downto 0)), dense.data(31 downto 0));

  -- Reads are synchronous: Q0 shows a value one edge after its address.
  synchronous_memory : entity work.marlune_memory
    generic map (ADDRESS_BITS => 8, DATA_BITS => 24, MODE => 1)
    port map (clk,
              '1', std_logic_vector(sync.read_address(7 downto 0)), sync_q,
              sync.enable, std_logic_vector(sync.write_address(7 downto 0)), sync.data(23 downto 0));

  many_port_memory : entity work.many_port_memory
    port map (clk,
              '1', std_logic_vector(many.read_address(8 downto 0)), many_a_q,
              '1', many_b_address, many_b_q,
              many.enable, std_logic_vector(many.write_address(8 downto 0)), many.data(15 downto 0),
              many_select, many_shared.enable, std_logic_vector(many_shared.read_address(8 downto 0)),
              many_shared.data(15 downto 0), many_d_q);

  -- Port b reads where port a's data points to, within the time step of the same edge.
  many_b_address <= many_a_q(8 downto 0);

  wide_memory : entity work.wide_memory
    port map (clk, wide_select, wide.enable, std_logic_vector(wide.read_address(5 downto 0)), wide.data, wide_q);

  -- The whole 32-bit address range, sparse.
  sparse_memory : entity work.marlune_memory
    generic map (ADDRESS_BITS => 32, DATA_BITS => 8)
    port map (clk,
              '1', std_logic_vector(sparse.read_address), sparse_q,
              sparse.enable, std_logic_vector(sparse.write_address), sparse.data(7 downto 0));

  clk <= not clk after 5 ns;

  traffic : process

    type word_list is array (natural range <>) of word;
    type name_list is array (natural range <>) of string(1 to 18);
    type address_list is array (0 to 255) of cell_address;

    constant PORTS : name_list := ("dense             ", "synchronous       ", "many ports, read a", "many ports, read b",
                                   "many ports, shared", "128 bits          ", "sparse            ");

    variable random           : generator;
    variable sparse_addresses : address_list;
    variable expected         : word_list(PORTS'range) := (others => (others => 'U'));
    variable compared, wrong  : natural := 0;

    impure function random_word return word is
      variable bits : word;
    begin
      for i in 0 to 7 loop
        bits(16 * i + 15 downto 16 * i) := std_logic_vector(to_unsigned(random.below(65536), 16));
      end loop;
      return bits;
    end function;

    impure function random_bit return std_logic is
    begin
      return std_logic'val(std_logic'pos('0') + random.below(2));
    end function;

    -- Every fourth read is at the address written.
    impure function random_inputs(cells : positive) return port_inputs is
      variable inputs : port_inputs;
    begin
      inputs.enable := random_bit;
      inputs.write_address := to_unsigned(random.below(cells), 32);
      inputs.read_address := to_unsigned(random.below(cells), 32);
      if random.below(4) = 0 then
        inputs.read_address := inputs.write_address;
      end if;
      inputs.data := random_word;
      return inputs;
    end function;

    impure function random_sparse_inputs return port_inputs is
      variable inputs : port_inputs := random_inputs(sparse_addresses'length);
    begin
      inputs.write_address := sparse_addresses(to_integer(inputs.write_address));
      inputs.read_address := sparse_addresses(to_integer(inputs.read_address));
      return inputs;
    end function;

    -- Chosen from all 2^32 - 1 addresses, the first and the last among them.
    procedure choose_sparse_addresses is
    begin
      for i in sparse_addresses'range loop
        sparse_addresses(i) := unsigned(random_word(31 downto 0));
      end loop;
      sparse_addresses(0) := x"00000000";
      sparse_addresses(1) := x"FFFFFFFE";
    end procedure;

    function extended(bits : std_logic_vector) return word is
      variable all_bits : word := (others => '0');
    begin
      all_bits(bits'length - 1 downto 0) := bits;
      return all_bits;
    end function;

    procedure run_models is
      variable shared_write : boolean;
    begin
      dense_model.clock_edge;
      dense_model.read(0, dense.read_address, expected(0));
      dense_model.write(1, dense.enable = '1', dense.write_address, extended(dense.data(31 downto 0)));

      sync_model.clock_edge;
      sync_model.read(0, sync.read_address, expected(1));
      sync_model.write(1, sync.enable = '1', sync.write_address, extended(sync.data(23 downto 0)));

      many_model.clock_edge;
      many_model.read(0, many.read_address, expected(2));
      many_model.read(1, resize(unsigned(many_b_address), 32), expected(3));
      if many_select = '1' then
        many_model.read(3, many_shared.read_address, expected(4));
      end if;
      shared_write := many_select = '1' and many_shared.enable = '1';
      many_model.write(2, many.enable = '1', many.write_address, extended(many.data(15 downto 0)));
      many_model.write(3, shared_write, many_shared.read_address, extended(many_shared.data(15 downto 0)));

      wide_model.clock_edge;
      if wide_select = '1' then
        wide_model.read(0, wide.read_address, expected(5));
      end if;
      wide_model.write(0, wide_select = '1' and wide.enable = '1', wide.read_address, wide.data);

      sparse_model.clock_edge;
      sparse_model.read(0, sparse.read_address, expected(6));
      sparse_model.write(1, sparse.enable = '1', sparse.write_address, extended(sparse.data(7 downto 0)));
    end procedure;

    procedure compare(which : natural; actual : std_logic_vector) is
    begin
      compared := compared + 1;
      if actual /= expected(which)(actual'length - 1 downto 0) then
        wrong := wrong + 1;
        if wrong <= 10 then
          report PORTS(which) & ": Q0 is " & to_hstring(actual) & ", not " &
            to_hstring(expected(which)(actual'length - 1 downto 0)) severity error;
        end if;
      end if;
    end procedure;

    procedure compare_all is
    begin
      compare(0, dense_q);
      compare(1, sync_q);
      compare(2, many_a_q);
      compare(3, many_b_q);
      compare(4, many_d_q);
      compare(5, wide_q);
      compare(6, sparse_q);
    end procedure;

    procedure change_other_ports is
    begin
      dense <= random_inputs(1024);
      sync <= random_inputs(256);
      many <= random_inputs(512);
      sparse <= random_sparse_inputs;
    end procedure;

    -- The rest of a cycle whose rising edge has come, to the falling edge.
    procedure finish_cycle is
    begin
      wait for 1 ns;
      run_models;
      compare_all;
      wait until falling_edge(clk);
      compare_all;
    end procedure;

    procedure say(text : string) is
      variable l : line;
    begin
      write(l, text);
      writeline(output, l);
    end procedure;

    -- The table of squares in an image of the same name goes to the dense memory's first cells, then some words from
    -- here. The model gets them too, and everything is read back.
    procedure load_and_poke is
      constant SQUARES : natural := 16;
      variable value   : word;
      variable cell    : std_logic_vector(31 downto 0);
    begin
      load_image("memory_tb.dense_memory", IMAGE, "table");
      for i in 0 to 31 loop
        if i < SQUARES then
          value := std_logic_vector(to_unsigned(i * i, value'length));
        else
          value := extended(random_word(31 downto 0));
          poke(memory_tb'path_name & "dense_memory", i, value);
        end if;
        peek("/memory_tb/dense_memory", i, cell);
        compared := compared + 1;
        if cell /= value(31 downto 0) then
          wrong := wrong + 1;
          report "cell " & integer'image(i) & " is " & to_hstring(cell) severity error;
        end if;
        dense_model.write(1, true, to_unsigned(i, 32), value);
        dense_model.clock_edge;
      end loop;
      say("An image of " & integer'image(SQUARES) & " words loaded, and 16 words poked: 32 words read back.");
    end procedure;

  begin
    dense_model.configure(false, 32d"1024");
    sync_model.configure(true, 32d"256");
    many_model.configure(false, 32d"512");
    wide_model.configure(true, 32d"64");
    sparse_model.configure(false, 32d"4294967295");
    choose_sparse_addresses;
    load_and_poke;

    for i in 1 to CYCLES loop
      -- Shared ports change at the falling edge: a chip select that goes off in a rising edge's time step takes back
      -- the write, but not the read.
      many_shared <= random_inputs(512);
      many_select <= random_bit;
      wide <= random_inputs(64);
      wide_select <= random_bit;
      change_other_ports;
      wait until rising_edge(clk);
      -- The others change once more in the rising edge's own time step: these values count, those before do not.
      change_other_ports;
      finish_cycle;
    end loop;
    dense.enable <= '0';
    sync.enable <= '0';
    many.enable <= '0';
    sparse.enable <= '0';
    many_select <= '0';
    wide_select <= '0';
    wait until rising_edge(clk);
    finish_cycle;

    say("An out-of-range access is reported and has no effect; here one read and one write:");
    dense.read_address <= 32d"1500";
    dense.write_address <= 32d"1600";
    dense.enable <= '1';
    wait until rising_edge(clk);
    finish_cycle;
    dense.read_address <= 32d"0";
    dense.enable <= '0';
    wait until rising_edge(clk);
    finish_cycle;

    say(integer'image(CYCLES) & " cycles of random traffic in 5 memories: " & integer'image(compared) & " values of " &
        integer'image(PORTS'length) & " outputs compared with the reference model, " & integer'image(wrong) & " differ.");
    assert wrong = 0 report "the memories differ from the reference model" severity failure;
    finish;
  end process;

end architecture;
