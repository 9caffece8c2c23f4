-- A memory of 1024 cells of 32 bits with one read port (prefix r) and one write port (prefix w). Copy the file for each
-- shape of memory in your design and change the entity's name, its ports and the three parameters; keep the rest.
--
-- The same source serves an FLI simulator, which runs the library directly, and GHDL, which runs it through the bridge.
--
-- Ports: CLK, and any number of groups. The text before the last "_" of a port's name, its prefix, says to which group
-- it belongs; what follows is its role. Prefixes are case-sensitive (if the language is), roles are not.
--
--   read port    Q0 (data out), RA0 (address), RE0 (enable: required, but the port reads at every edge)
--   write port   D0 (data in), WA0 (address), WE0 (enable)
--   shared port  Q0, D0, A0 (address), CS0 (chip select), WE0
--
-- All are std_logic or std_logic_vector, data at most 1024 bits wide. A group that lacks a port is not served; the
-- bridge warns of it. VPI does not show ports of some other types (real, record, array of vectors) in GHDL.
--
-- Parameters, after the semicolon of the attribute:
--
--   1. 0: a read drives Q0 at its own edge; 1: one edge later
--   2. bits of a LAU (least addressable unit), 1 to 1024. A cell of up to 64 keeps 64 bits in a dense memory; others
--      keep 1024
--   3. number of cells; 4294967295 makes a sparse memory of the whole 32-bit address range, which takes space only for
--      cells that were accessed

library ieee;
use ieee.std_logic_1164.all;
use work.marlune_fli.all;

entity marlune_memory is
  port (
    CLK   : in  std_logic;
    r_RE0 : in  std_logic;
    r_RA0 : in  std_logic_vector(9 downto 0);
    r_Q0  : out std_logic_vector(31 downto 0);
    w_WE0 : in  std_logic;
    w_WA0 : in  std_logic_vector(9 downto 0);
    w_D0  : in  std_logic_vector(31 downto 0));
end entity;

architecture fli of marlune_memory is
  attribute foreign : string;
  attribute foreign of fli : architecture is "marlune_fli_memory_init libmarlune_fli_memory.so; 0 32 1024";

  -- For the bridge; an FLI simulator does not look inside a foreign architecture.
  constant foreign_bits : std_logic_vector := to_bits(fli'foreign);
  signal marlune_foreign : std_logic_vector(foreign_bits'range) := foreign_bits;
  signal marlune_served  : std_logic := '0'; -- the bridge sets it
begin

  process (CLK)
  begin
    assert marlune_served = '1' or not rising_edge(CLK)
      report marlune_served'path_name & ": no library serves this memory. Run ghdl -r with --vpi=libmarlune_fli_vpi.so."
      severity failure;
  end process;

end architecture;
