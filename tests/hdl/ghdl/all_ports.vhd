-- A memory with ports of every kind in three architectures: a foreign one, one that is served by direct calls, and a model
-- that has nothing in common with the library but the rules.

library ieee;
use ieee.std_logic_1164.all;

entity all_ports is
  generic (
    ADDRESS_BITS : positive;
    DATA_BITS    : positive;
    SYNCHRONOUS  : natural;    -- 0 or 1
    LAU_BITS     : positive;
    CELLS        : natural);   -- 0 for a sparse memory
  port (
    CLK   : in  std_logic;
    a_RE0 : in  std_logic;                                      -- a read port
    a_RA0 : in  std_logic_vector(ADDRESS_BITS - 1 downto 0);
    a_Q0  : out std_logic_vector(DATA_BITS - 1 downto 0);
    b_RE0 : in  std_logic_vector(1 downto 0);                   -- one with a single std_logic for its data
    b_RA0 : in  std_logic_vector(0 to ADDRESS_BITS - 1);
    b_Q0  : out std_logic;
    c_WE0 : in  std_logic_vector(1 downto 0);                   -- a write port
    c_WA0 : in  std_logic_vector(ADDRESS_BITS - 1 downto 0);
    c_D0  : in  std_logic_vector(DATA_BITS - 1 downto 0);
    d_CS0 : in  std_logic;                                      -- a shared port
    d_WE0 : in  std_logic;
    d_A0  : in  std_logic_vector(ADDRESS_BITS - 1 downto 0);
    d_D0  : in  std_logic_vector(DATA_BITS - 1 downto 0);
    d_Q0  : out std_logic_vector(DATA_BITS - 1 downto 0);
    e_RE0 : in  std_logic;                                      -- one of each kind; WA0 is the shared port's address too
    e_RA0 : in  std_logic_vector(ADDRESS_BITS - 1 downto 0);
    e_WA0 : in  std_logic_vector(ADDRESS_BITS - 1 downto 0);
    e_CS0 : in  std_logic_vector(1 downto 0);
    e_WE0 : in  std_logic;
    e_D0  : in  std_logic_vector(DATA_BITS - 1 downto 0);
    e_Q0  : out std_logic_vector(DATA_BITS - 1 downto 0);
    f_RA0 : in  std_logic_vector(ADDRESS_BITS - 1 downto 0);    -- incomplete
    f_Q0  : out std_logic_vector(DATA_BITS - 1 downto 0);
    g_WE0 : in  std_logic;                                      -- a write port of single bits
    g_WA0 : in  std_logic;
    g_D0  : in  std_logic);

  function parameters return string is
  begin
    if CELLS = 0 then
      return integer'image(SYNCHRONOUS) & " " & integer'image(LAU_BITS) & " 4294967295";
    end if;
    return integer'image(SYNCHRONOUS) & " " & integer'image(LAU_BITS) & " " & integer'image(CELLS);
  end function;
end entity;

use work.marlune_fli.all;

architecture fli of all_ports is
  constant foreign_bits : std_logic_vector := to_bits("marlune_fli_memory_init libmarlune_fli_memory.so; " & parameters);
  signal marlune_foreign : std_logic_vector(foreign_bits'range) := foreign_bits;
begin
end architecture;

use work.marlune_direct.all;

architecture direct of all_ports is
begin
  process (CLK, a_RA0, b_RA0, c_WE0, c_WA0, c_D0, d_CS0, d_WE0, d_A0, d_D0, e_RA0, e_WA0, e_CS0, e_WE0, e_D0, g_WE0, g_WA0, g_D0)
    constant A : string := integer'image(ADDRESS_BITS);
    constant D : string := integer'image(DATA_BITS);
    variable memory : integer := open_memory(CLK'path_name, parameters,
      "a_RE0 a_RA0:" & A & " b_RE0:2 b_RA0:" & A & " c_WE0:2 c_WA0:" & A & " c_D0:" & D &
      " d_CS0 d_WE0 d_A0:" & A & " d_D0:" & D & " e_RE0 e_RA0:" & A & " e_WA0:" & A & " e_CS0:2 e_WE0 e_D0:" & D &
      " f_RA0:" & A & " g_WE0 g_WA0 g_D0 a_Q0:" & D & " d_Q0:" & D & " e_Q0:" & D & " f_Q0:" & D & " b_Q0");
    variable outputs : std_logic_vector(4 * DATA_BITS downto 0);
    variable changed : boolean;
  begin
    wake(memory, now, CLK, a_RE0 & a_RA0 & b_RE0 & b_RA0 & c_WE0 & c_WA0 & c_D0 & d_CS0 & d_WE0 & d_A0 & d_D0 &
      e_RE0 & e_RA0 & e_WA0 & e_CS0 & e_WE0 & e_D0 & f_RA0 & g_WE0 & g_WA0 & g_D0, outputs, changed);
    if changed then
      a_Q0 <= outputs(4 * DATA_BITS downto 3 * DATA_BITS + 1);
      d_Q0 <= outputs(3 * DATA_BITS downto 2 * DATA_BITS + 1);
      e_Q0 <= outputs(2 * DATA_BITS downto DATA_BITS + 1);
      f_Q0 <= outputs(DATA_BITS downto 1);
      b_Q0 <= outputs(0);
    end if;
  end process;
end architecture;

library ieee;
use ieee.numeric_std.all;
use std.textio.all;

architecture model of all_ports is
begin
  process (CLK, a_RA0, b_RA0, c_WE0, c_WA0, c_D0, d_CS0, d_WE0, d_A0, d_D0, e_RA0, e_WA0, e_CS0, e_WE0, e_D0, g_WE0, g_WA0, g_D0)
    subtype word is std_logic_vector(DATA_BITS - 1 downto 0);
    subtype prefix is character range 'a' to 'g';
    type word_list is array (prefix) of word;
    type cell is record
      address : unsigned(31 downto 0);
      value   : word;
    end record;
    type cell_list is array (natural range <>) of cell;
    type cell_pointer is access cell_list;

    variable cells_used : cell_pointer := new cell_list(0 to 63);   -- those that were written
    variable count      : natural := 0;
    variable last_time  : time := 0 fs;
    variable last_edge  : boolean := false;
    variable samples    : word_list := (others => (others => '0'));
    variable driven     : word_list := (others => (others => '0'));
    variable is_pending : std_logic_vector(character'pos(prefix'left) to character'pos(prefix'right)) := (others => '0');
    variable pending    : cell_list(is_pending'range);

    -- What counts of a value are its elements '1'.
    function bits(value : std_logic_vector; length : positive) return std_logic_vector is
      alias elements : std_logic_vector(value'length - 1 downto 0) is value;
      variable result : std_logic_vector(length - 1 downto 0) := (others => '0');
    begin
      for i in 0 to minimum(length, value'length) - 1 loop
        if elements(i) = '1' then
          result(i) := '1';
        end if;
      end loop;
      return result;
    end function;

    function is_one(value : std_logic_vector) return boolean is
    begin
      return unsigned(bits(value, value'length)) = 1;
    end function;

    impure function is_inside(address : unsigned; outcome : string) return boolean is
      variable l : line;
    begin
      if (CELLS = 0 and address /= x"FFFFFFFF") or (CELLS /= 0 and address < CELLS) then
        return true;
      end if;
      write(l, string'("model: ") & outcome);
      writeline(output, l);
      return false;
    end function;

    impure function contents(address : unsigned) return word is
    begin
      if is_inside(address, "Returning 0.") then
        for i in 0 to count - 1 loop
          if cells_used(i).address = address then
            return cells_used(i).value;
          end if;
        end loop;
      end if;
      return (others => '0');
    end function;

    procedure store(written : cell) is
      variable longer : cell_pointer;
    begin
      for i in 0 to count - 1 loop
        if cells_used(i).address = written.address then
          cells_used(i).value := written.value;
          return;
        end if;
      end loop;
      if count = cells_used'length then
        longer := new cell_list(0 to 2 * count - 1);
        longer(cells_used'range) := cells_used.all;
        deallocate(cells_used);
        cells_used := longer;
      end if;
      cells_used(count) := written;
      count := count + 1;
    end procedure;

    impure function read(p : prefix; address : std_logic_vector) return word is
      constant value : word := contents(unsigned(bits(address, 32)));
    begin
      if SYNCHRONOUS = 0 then
        return value;
      end if;
      samples(p) := value;
      return driven(p);
    end function;

    procedure write(p : prefix; enabled : boolean; address, value : std_logic_vector) is
      variable recorded : word := bits(value, word'length);
    begin
      if CELLS /= 0 and LAU_BITS <= 64 then
        recorded := bits(recorded(minimum(word'left, 63) downto 0), word'length);
      end if;
      is_pending(character'pos(p)) := '1' when enabled else '0';
      pending(character'pos(p)) := (unsigned(bits(address, 32)), recorded);
    end procedure;

    variable q : word;
  begin
    if now /= last_time then
      last_time := now;
      last_edge := not last_edge and CLK = '1';
      if last_edge then
        driven := samples;
        samples := (others => (others => '0'));
        for p in pending'range loop
          if is_pending(p) = '1' and is_inside(pending(p).address, "Not writing anything.") then
            store(pending(p));
          end if;
        end loop;
        is_pending := (others => '0');
      end if;
    end if;
    if last_edge then
      a_Q0 <= read('a', a_RA0);
      q := read('b', b_RA0);
      b_Q0 <= '1' when unsigned(q) = 1 else '0';
      e_Q0 <= read('e', e_RA0);
      if d_CS0 = '1' then
        d_Q0 <= read('d', d_A0);
      end if;
      if is_one(e_CS0) then
        e_Q0 <= read('e', e_WA0);
      end if;
      write('c', is_one(c_WE0), c_WA0, c_D0);
      write('e', e_WE0 = '1', e_WA0, e_D0);
      write('g', g_WE0 = '1', (0 => g_WA0), (0 => g_D0));
      write('d', d_CS0 = '1' and d_WE0 = '1', d_A0, d_D0);
      write('e', is_one(e_CS0) and e_WE0 = '1', e_WA0, e_D0);
    end if;
  end process;
end architecture;
