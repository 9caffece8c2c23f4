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

-- For data of up to 128 bits.
library ieee;
use ieee.numeric_std.all;
use work.reference_memory.all;

architecture model of all_ports is
begin
  process (CLK, d_CS0, d_WE0, c_WE0, a_RA0, b_RA0, c_WA0, d_A0, c_D0, d_D0)
    -- What counts of a value are its elements '1', and of a dense memory's cell up to 64 bits wide the low 64.
    function bits(value : std_logic_vector) return word is
      alias elements : std_logic_vector(value'length - 1 downto 0) is value;
      variable result : word := (others => '0');
    begin
      for i in elements'range loop
        result(i) := '1' when elements(i) = '1' and (i < 64 or CELLS = 0 or LAU_BITS > 64) else '0';
      end loop;
      return result;
    end function;

    -- 4294967295 for a sparse memory.
    constant number_of_cells : cell_address := to_unsigned(CELLS, 32) - boolean'pos(CELLS = 0);
    variable model_memory    : memory;
    variable q               : word;
    variable last_time       : time := 0 fs;
    variable is_edge         : boolean := false;
  begin
    model_memory.configure(MODE = 1, number_of_cells);
    if now /= last_time then
      last_time := now;
      is_edge := not is_edge and CLK = '1';
      if is_edge then
        model_memory.clock_edge;
      end if;
    end if;
    if is_edge then
      model_memory.read(0, cell_address(bits(a_RA0)(31 downto 0)), q);
      a_Q0 <= q(a_Q0'length - 1 downto 0);
      model_memory.read(1, cell_address(bits(b_RA0)(31 downto 0)), q);
      b_Q0 <= '1' when unsigned(q) = 1 else '0';
      if d_CS0 = '1' then
        model_memory.read(2, cell_address(bits(d_A0)(31 downto 0)), q);
        d_Q0 <= q(d_Q0'length - 1 downto 0);
      end if;
      model_memory.write(2, unsigned(bits(c_WE0)) = 1, cell_address(bits(c_WA0)(31 downto 0)), bits(c_D0));
      model_memory.write(3, d_CS0 = '1' and d_WE0 = '1', cell_address(bits(d_A0)(31 downto 0)), bits(d_D0));
    end if;
  end process;
end architecture;
