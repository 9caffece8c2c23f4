-- A memory with two read ports, a write port and a shared port in three architectures: a foreign one, one served by
-- direct calls, and a model that has nothing in common with the library but the rules.

library ieee;
use ieee.std_logic_1164.all;

entity all_ports is
  generic (ADDRESS_BITS, DATA_BITS, MODE, LAU_BITS, CELLS : natural);   -- CELLS are 0 for a sparse memory
  port (
    CLK, a_RE0, d_CS0, d_WE0 : in  std_logic;
    b_RE0, c_WE0             : in  std_logic_vector(1 downto 0);
    a_RA0, c_WA0, d_A0       : in  std_logic_vector(ADDRESS_BITS - 1 downto 0);
    b_RA0                    : in  std_logic_vector(0 to ADDRESS_BITS - 1);
    c_D0, d_D0               : in  std_logic_vector(DATA_BITS - 1 downto 0);
    a_Q0, d_Q0               : out std_logic_vector(DATA_BITS - 1 downto 0);
    b_Q0                     : out std_logic);

  function parameters return string is
    constant mode_and_width : string := integer'image(MODE) & " " & integer'image(LAU_BITS) & " ";
  begin
    if CELLS = 0 then
      return mode_and_width & "4294967295";
    end if;
    return mode_and_width & integer'image(CELLS);
  end function;
end entity;

use work.marlune_fli.all;

architecture fli of all_ports is
  constant init         : string := "marlune_fli_memory_init libmarlune_fli_memory.so; ";
  constant foreign_bits : std_logic_vector := to_bits(init & parameters);
  signal marlune_foreign : std_logic_vector(foreign_bits'range) := foreign_bits;
begin
end architecture;

use work.marlune_direct.all;

architecture direct of all_ports is
begin
  process (CLK, d_CS0, d_WE0, c_WE0, a_RA0, b_RA0, c_WA0, d_A0, c_D0, d_D0)
    constant A : string := ":" & integer'image(ADDRESS_BITS) & " ";
    constant D : string := ":" & integer'image(DATA_BITS) & " ";
    variable memory : integer := open_memory(CLK'path_name, parameters, "a_RE0 d_CS0 d_WE0 b_RE0:2 c_WE0:2 " &
      "a_RA0" & A & "b_RA0" & A & "c_WA0" & A & "d_A0" & A & "c_D0" & D & "d_D0" & D &
      "a_Q0" & D & "d_Q0" & D & "b_Q0");
    variable outputs : std_logic_vector(2 * DATA_BITS downto 0);
    variable changed : boolean;
  begin
    wake(memory, now, CLK, a_RE0 & d_CS0 & d_WE0 & b_RE0 & c_WE0 & a_RA0 & b_RA0 & c_WA0 & d_A0 & c_D0 & d_D0,
      outputs, changed);
    if changed then
      (a_Q0, d_Q0, b_Q0) <= outputs;
    end if;
  end process;
end architecture;

library ieee;
use ieee.numeric_std.all;

architecture model of all_ports is
begin
  -- The low four bits of an address stand for all of it.
  process (CLK, d_CS0, d_WE0, c_WE0, a_RA0, b_RA0, c_WA0, d_A0, c_D0, d_D0)
    subtype word is std_logic_vector(DATA_BITS - 1 downto 0);
    type word_list is array (natural range <>) of word;
    type write_record is record
      enabled : boolean;
      address : unsigned(ADDRESS_BITS - 1 downto 0);
      value   : word;
    end record;
    constant ZERO : word := (others => '0');
    variable contents        : word_list(0 to 15) := (others => ZERO);
    variable samples, driven : word_list(0 to 2) := (others => ZERO);
    variable c_write, d_write : write_record := (false, (others => '0'), ZERO);
    variable last_time : time := 0 fs;
    variable last_edge : boolean := false;

    -- What counts of a value are its elements '1'.
    function bits(value : std_logic_vector) return std_logic_vector is
      variable result : std_logic_vector(value'length - 1 downto 0) := value;
    begin
      for i in result'range loop
        result(i) := '1' when result(i) = '1' else '0';
      end loop;
      return result;
    end function;

    function is_inside(address : unsigned) return boolean is
    begin
      return (CELLS = 0 and (and address) = '0') or (CELLS /= 0 and address < CELLS);
    end function;

    procedure commit(written : write_record) is
    begin
      if written.enabled and is_inside(written.address) then
        contents(to_integer(written.address(3 downto 0))) := written.value;
      end if;
    end procedure;

    impure function read(port_number : natural; address : std_logic_vector) return word is
      constant number : unsigned(ADDRESS_BITS - 1 downto 0) := unsigned(bits(address));
    begin
      samples(port_number) := contents(to_integer(number(3 downto 0))) when is_inside(number) else ZERO;
      if MODE = 1 then
        return driven(port_number);
      end if;
      return samples(port_number);
    end function;

    impure function to_write(enabled : boolean; address, value : std_logic_vector) return write_record is
      variable kept : word := bits(value);
    begin
      if CELLS /= 0 and LAU_BITS <= 64 then
        kept := std_logic_vector(resize(unsigned(kept(minimum(kept'left, 63) downto 0)), DATA_BITS));
      end if;
      return (enabled, unsigned(bits(address)), kept);
    end function;

    variable b_word : word;
  begin
    if now /= last_time then
      last_time := now;
      last_edge := not last_edge and CLK = '1';
      if last_edge then
        driven := samples;
        samples := (others => ZERO);
        commit(c_write);
        commit(d_write);
      end if;
    end if;
    if last_edge then
      a_Q0 <= read(0, a_RA0);
      b_word := read(1, b_RA0);
      b_Q0 <= '1' when unsigned(b_word) = 1 else '0';
      if d_CS0 = '1' then
        d_Q0 <= read(2, d_A0);
      end if;
      c_write := to_write(bits(c_WE0) = "01", c_WA0, c_D0);
      d_write := to_write(d_CS0 = '1' and d_WE0 = '1', d_A0, d_D0);
    end if;
  end process;
end architecture;
