-- A memory with one read port (prefix r) and one write port (prefix w), served by direct calls in GHDL:
--
--   ghdl -i --std=08 hdl/ghdl/*.vhd my_tb.vhd
--   ghdl -m --std=08 my_tb
--   LD_LIBRARY_PATH=$LIB ghdl -r --std=08 my_tb
--
-- For other ports copy this file, and change the entity's name, its ports, and the process: the ports' names and
-- lengths, and the inputs in the same order. RE0 is required, but no event on it matters. The rules of port names are
-- in ../marlune_memory.vhd.

library ieee;
use ieee.std_logic_1164.all;
use work.marlune_direct.all;

entity marlune_memory is
  generic (
    ADDRESS_BITS : positive := 10;
    DATA_BITS    : positive := 32;
    PARAMETERS   : string := "";    -- "mode width cells"; empty: from MODE and the widths above
    MODE         : natural := 0);   -- 0: a read drives Q0 at its own edge; 1: one edge later
  port (
    CLK   : in  std_logic;
    r_RE0 : in  std_logic;
    r_RA0 : in  std_logic_vector(ADDRESS_BITS - 1 downto 0);
    r_Q0  : out std_logic_vector(DATA_BITS - 1 downto 0);
    w_WE0 : in  std_logic;
    w_WA0 : in  std_logic_vector(ADDRESS_BITS - 1 downto 0);
    w_D0  : in  std_logic_vector(DATA_BITS - 1 downto 0));
end entity;

architecture direct of marlune_memory is
begin

  process (CLK, r_RA0, w_WE0, w_WA0, w_D0)
    variable memory : integer := open_memory(CLK'path_name, PARAMETERS, MODE, DATA_BITS, ADDRESS_BITS,
      "r_RE0 r_RA0:" & integer'image(r_RA0'length) & " w_WE0 w_WA0:" & integer'image(w_WA0'length) &
      " w_D0:" & integer'image(w_D0'length) & " r_Q0:" & integer'image(r_Q0'length));
    variable outputs : std_logic_vector(r_Q0'length - 1 downto 0);
    variable changed : boolean;
  begin
    wake(memory, now, CLK, r_RE0 & r_RA0 & w_WE0 & w_WA0 & w_D0, outputs, changed);
    if changed then
      r_Q0 <= outputs;
    end if;
  end process;

end architecture;
