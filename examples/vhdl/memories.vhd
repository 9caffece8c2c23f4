-- The memories of the example beside marlune_memory itself: four shapes made from that file.

-- Reads are synchronous: Q0 shows a value one edge after its address.
library ieee;
use ieee.std_logic_1164.all;
use work.marlune_fli.all;

entity synchronous_memory is
  port (
    CLK   : in  std_logic;
    r_RE0 : in  std_logic;
    r_RA0 : in  std_logic_vector(7 downto 0);
    r_Q0  : out std_logic_vector(23 downto 0);
    w_WE0 : in  std_logic;
    w_WA0 : in  std_logic_vector(7 downto 0);
    w_D0  : in  std_logic_vector(23 downto 0));
end entity;

architecture fli of synchronous_memory is
  attribute foreign : string;
  attribute foreign of fli : architecture is "marlune_fli_memory_init libmarlune_fli_memory.so; 1 24 0x100";
  constant foreign_bits : std_logic_vector := to_bits(fli'foreign);
  signal marlune_foreign : std_logic_vector(foreign_bits'range) := foreign_bits;
begin
end architecture;

-- Two read ports, a write port and a shared port.
library ieee;
use ieee.std_logic_1164.all;
use work.marlune_fli.all;

entity many_port_memory is
  port (
    CLK   : in  std_logic;
    a_RE0 : in  std_logic;
    a_RA0 : in  std_logic_vector(8 downto 0);
    a_Q0  : out std_logic_vector(15 downto 0);
    b_RE0 : in  std_logic;
    b_RA0 : in  std_logic_vector(8 downto 0);
    b_Q0  : out std_logic_vector(15 downto 0);
    c_WE0 : in  std_logic;
    c_WA0 : in  std_logic_vector(8 downto 0);
    c_D0  : in  std_logic_vector(15 downto 0);
    d_CS0 : in  std_logic;
    d_WE0 : in  std_logic;
    d_A0  : in  std_logic_vector(8 downto 0);
    d_D0  : in  std_logic_vector(15 downto 0);
    d_Q0  : out std_logic_vector(15 downto 0));
end entity;

architecture fli of many_port_memory is
  attribute foreign : string;
  attribute foreign of fli : architecture is "marlune_fli_memory_init libmarlune_fli_memory.so; 0 16 512";
  constant foreign_bits : std_logic_vector := to_bits(fli'foreign);
  signal marlune_foreign : std_logic_vector(foreign_bits'range) := foreign_bits;
begin
end architecture;

-- 128 bits, behind one shared port with synchronous reads.
library ieee;
use ieee.std_logic_1164.all;
use work.marlune_fli.all;

entity wide_memory is
  port (
    CLK   : in  std_logic;
    p_CS0 : in  std_logic;
    p_WE0 : in  std_logic;
    p_A0  : in  std_logic_vector(5 downto 0);
    p_D0  : in  std_logic_vector(127 downto 0);
    p_Q0  : out std_logic_vector(127 downto 0));
end entity;

architecture fli of wide_memory is
  attribute foreign : string;
  attribute foreign of fli : architecture is "marlune_fli_memory_init libmarlune_fli_memory.so; 1 128 64";
  constant foreign_bits : std_logic_vector := to_bits(fli'foreign);
  signal marlune_foreign : std_logic_vector(foreign_bits'range) := foreign_bits;
begin
end architecture;

-- The whole 32-bit address range, sparse.
library ieee;
use ieee.std_logic_1164.all;
use work.marlune_fli.all;

entity sparse_memory is
  port (
    CLK   : in  std_logic;
    r_RE0 : in  std_logic;
    r_RA0 : in  std_logic_vector(31 downto 0);
    r_Q0  : out std_logic_vector(7 downto 0);
    w_WE0 : in  std_logic;
    w_WA0 : in  std_logic_vector(31 downto 0);
    w_D0  : in  std_logic_vector(7 downto 0));
end entity;

architecture fli of sparse_memory is
  attribute foreign : string;
  attribute foreign of fli : architecture is "marlune_fli_memory_init libmarlune_fli_memory.so; 0 8 4294967295";
  constant foreign_bits : std_logic_vector := to_bits(fli'foreign);
  signal marlune_foreign : std_logic_vector(foreign_bits'range) := foreign_bits;
begin
end architecture;
