-- The package marlune_testbench in a design of memories with foreign architectures, of directly served ones, or of
-- both in turn: every form of a path, values and cells of 1 to 1024 bits, all 32 bits of an address, images, errors.

entity testbench_tb is
  generic (
    WAY   : string := "mixed";     -- "foreign", "direct"
    FAULT : natural := 0);         -- see the end
end entity;

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;
use std.env.all;
use work.marlune_testbench.all;

architecture test of testbench_tb is

  subtype word is std_logic_vector(1023 downto 0);
  type integer_list is array (natural range <>) of positive;
  constant WIDTHS : integer_list := (1, 8, 33, 64, 65, 128, 1024, 32, 32, 8, 8);   -- of cells and data
  constant SPARSE : natural := 9;   -- from this memory on
  type word_list is array (WIDTHS'range) of word;

  function size(memory : natural) return string is
  begin
    if memory >= SPARSE then
      return " 4294967295";
    end if;
    return " 16";
  end function;

  signal clk     : std_logic := '0';
  signal enable  : std_logic := '0';
  signal address : std_logic_vector(31 downto 0) := (others => '0');
  signal data    : word := (others => '0');
  signal q       : word_list;

begin

  memories : for i in word_list'range generate
    constant WIDTH : positive := WIDTHS(i);
    constant A     : positive := 4 + 28 * boolean'pos(i >= SPARSE);
  begin
    served : if WAY = "direct" or (WAY = "mixed" and i mod 2 = 1) generate
      \The.Memory\ : entity work.marlune_memory(direct)
        generic map (A, WIDTH)
        port map (clk, '0', address(A - 1 downto 0), q(i)(WIDTH - 1 downto 0), enable, address(A - 1 downto 0),
          data(WIDTH - 1 downto 0));
    else generate
      \The.Memory\ : entity work.marlune_memory(fli)
        generic map (A, WIDTH, "0 " & integer'image(WIDTH) & size(i))
        port map (clk, '0', address(A - 1 downto 0), q(i)(WIDTH - 1 downto 0), enable, address(A - 1 downto 0),
          data(WIDTH - 1 downto 0));
    end generate;
  end generate;

  untouched : if WAY /= "foreign" generate
    spare : entity work.marlune_memory(direct) generic map (4, 8) port map (clk, '0', x"0", open, '0', x"0", x"00");
  end generate;

  process

    -- The forms of a path that a user may write.
    function path(memory, form : natural) return string is
      constant number : string := integer'image(memory);
    begin
      case form mod 5 is
        when 0 => return "testbench_tb.memories(" & number & ").served.\The.Memory\";
        when 1 => return "/testbench_tb/memories(" & number & ")/served/\The.Memory\";
        when 2 => return testbench_tb'path_name & "memories(" & number & "):served:\The.Memory\:";
        when 3 => return "testbench_tb.memories[" & number & "].served.\The.Memory\";
        when others => return "TESTBENCH_TB.MEMORIES(" & number & ").SERVED.\THE.MEMORY\";
      end case;
    end function;

    procedure expect(actual, wanted : std_logic_vector; what : string) is
    begin
      assert actual = wanted report what & " is " & to_hstring(actual) & ", not " & to_hstring(wanted) severity failure;
    end procedure;

    -- Another one for each cell, with bits throughout its width.
    function value_of(memory, cell, width : natural) return std_logic_vector is
      variable value : std_logic_vector(width - 1 downto 0);
    begin
      for i in value'range loop
        value(i) := std_logic'val(2 + (i * i / 7 + i + cell * (i mod 5 + 1) + memory) mod 2);
      end loop;
      return value;
    end function;

    procedure clock_edge is
    begin
      clk <= '1' after 1 ns, '0' after 5 ns;
      wait for 10 ns;
    end procedure;

    -- A cell takes the low bits of a value, and a value gets zeros beyond the cell's bits.
    procedure access_cells(memory : natural) is
      constant NAME   : string := "memory " & integer'image(memory);
      constant WIDTH  : positive := WIDTHS(memory);
      constant ZEROS  : std_logic_vector(68 downto 0) := (others => '0');
      variable read   : std_logic_vector(0 to WIDTH - 1);
      variable longer : std_logic_vector(WIDTH + 69 downto 0);
    begin
      for cell in 0 to 15 loop
        poke(path(memory, cell), cell, value_of(memory, cell, WIDTH + cell));
        peek(path(memory, cell + 1), cell, read);
        expect(read, value_of(memory, cell, WIDTH), NAME);
        longer := (others => 'X');
        peek(path(memory, 0), to_unsigned(cell, 4 + cell), longer(WIDTH + 68 downto 0));
        expect(longer, 'X' & ZEROS & value_of(memory, cell, WIDTH), NAME & ", a longer value");
      end loop;
      peek(path(memory, 0), 14, longer(3 downto 3));
      expect(longer(3 downto 3), value_of(memory, 14, 1), NAME & ", one bit");
      poke(path(memory, 0), to_unsigned(15, 40), std_logic_vector'("UX0WZL-H1"));
      peek(path(memory, 0), 15, longer);
      expect(longer, "0" & ZEROS & std_logic_vector(to_unsigned(1, WIDTH)), NAME & ", the nine values");
    end procedure;

    procedure access_high_addresses(memory : natural) is
      type address_list is array (natural range <>) of unsigned(0 to 31);
      constant ADDRESSES : address_list := (x"7FFFFFFF", x"80000000", x"80000001", x"FFFFFFFE");
      variable read : std_logic_vector(7 downto 0);
    begin
      for i in ADDRESSES'range loop
        poke(path(memory, i), ADDRESSES(i), value_of(memory, i + 20, 8));
      end loop;
      poke(path(memory, 0), unsigned'(x"00FFFFFFFF"), x"55");   -- beyond the end
      for i in ADDRESSES'range loop
        peek(path(memory, i), "00000000" & ADDRESSES(i), read);
        expect(read, value_of(memory, i + 20, 8), "a cell of a high address");
      end loop;
      peek(path(memory, 0), natural'high, read);
      expect(read, value_of(memory, 20, 8), "the cell of the highest natural address");
      peek(path(memory, 0), unsigned'(x"FFFFFFFF"), read);
      expect(read, x"00", "a cell beyond the end");
    end procedure;

    procedure expect_cells(memory : natural; wanted : std_logic_vector) is
      constant WIDTH : positive := WIDTHS(memory);
      alias list : std_logic_vector(0 to wanted'length - 1) is wanted;
      variable read : std_logic_vector(WIDTH - 1 downto 0);
    begin
      for cell in 0 to wanted'length / WIDTH - 1 loop
        peek(path(memory, cell), cell, read);
        expect(read, list(cell * WIDTH to (cell + 1) * WIDTH - 1), "a loaded cell");
      end loop;
    end procedure;

    variable read : word;
  begin
    if FAULT = 7 then
      clock_edge;
    end if;
    for memory in WIDTHS'range loop
      access_cells(memory);
    end loop;
    for memory in SPARSE to SPARSE + 1 loop
      access_high_addresses(memory);
      load_image(path(memory, memory), "image.vexon", "data", 16#1000#);
      expect_cells(memory, x"4433221188776655");
      load_bank(path(memory, 4), "image.vexon", "data", 1, 2, 16#0FFE#);   -- from cell 1 on
      expect_cells(memory, x"4433117755");
      load_bank(path(memory, 3), "image.vexon", "data", 3, 4, unsigned'(x"1000"));
      expect_cells(memory, x"1155117755");
      load_image(path(memory - 2, 2), "image.vexon", "high", unsigned'(x"80000004"));
      expect_cells(memory - 2, x"0100008002000000");
    end loop;
    assert now = 0 ns;

    -- Ports find what was poked, and what they write is there from the next edge on.
    for memory in WIDTHS'range loop
      poke(path(memory, 0), 3, value_of(memory, 3, WIDTHS(memory)));
    end loop;
    address <= x"00000003";
    enable <= '1';
    data <= (others => '1');
    clock_edge;
    for memory in WIDTHS'range loop
      expect(q(memory)(WIDTHS(memory) - 1 downto 0), value_of(memory, 3, WIDTHS(memory)), "a port");
      poke(path(memory, 0), 3, "0");
    end loop;
    clock_edge;
    for memory in WIDTHS'range loop
      peek(path(memory, 0), 3, read);
      expect(q(memory)(WIDTHS(memory) - 1 downto 0), (1 to WIDTHS(memory) => '1'), "the port after its write");
      expect(read(WIDTHS(memory) - 1 downto 0), (1 to WIDTHS(memory) => '1'), "what the port wrote");
    end loop;

    case FAULT is
      when 0 => report "PASSED";
      when 1 => poke("testbench_tb.memories(1).nothing", 0, "1");
      when 2 => load_image(path(1, 4), "missing.vexon", "data");
      when 3 => load_bank(path(7, 2), "image.vexon", "data", 0, 2);
      when 4 => load_bank(path(8, 3), "image.vexon", "high", 0, 0);
      when 5 => poke(path(1, 0), unsigned'(x"100000000"), "1");
      when 6 => poke(path(1, 0), unsigned'("0X"), "1");
      when others => report "there is no such fault" severity failure;
    end case;
    finish;
  end process;
end architecture;
