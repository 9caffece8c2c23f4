-- A port that is no std_logic, as GHDL shows it.
library ieee;
use ieee.std_logic_1164.all;
use work.marlune_fli.all;

entity bad_memory is
  port (CLK : in std_logic; a_RA0 : in integer);
end entity;

architecture fli of bad_memory is
  signal marlune_foreign : std_logic_vector(0 to 463) :=
    to_bits("marlune_fli_memory_init libmarlune_fli_memory.so; 0 8 16  ");
begin
end architecture;

library ieee;
use ieee.std_logic_1164.all;

entity bad_tb is
end entity;

architecture test of bad_tb is
  signal clk : std_logic := '0';
  signal address : integer := 0;
begin
  memory : entity work.bad_memory port map (clk, address);
end architecture;
