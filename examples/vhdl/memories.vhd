-- The memories of the example beside marlune_memory itself: four shapes made from hdl/ghdl/marlune_memory.vhd. Each has
-- fixed widths, so it needs no generics.

-- Reads are synchronous: Q0 shows a value one edge after its address.
library ieee;
use ieee.std_logic_1164.all;
use work.marlune_direct.all;

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

architecture direct of synchronous_memory is
begin

  process (CLK, r_RA0, w_WE0, w_WA0, w_D0)
    variable memory  : integer := open_memory(CLK'path_name, "1 24 0x100",
      "r_RE0 r_RA0:8 w_WE0 w_WA0:8 w_D0:24 r_Q0:24");
    variable outputs : std_logic_vector(23 downto 0);
    variable changed : boolean;
  begin
    wake(memory, now, CLK, r_RE0 & r_RA0 & w_WE0 & w_WA0 & w_D0, outputs, changed);
    if changed then
      r_Q0 <= outputs;
    end if;
  end process;

end architecture;

-- Two read ports, a write port and a shared port.
library ieee;
use ieee.std_logic_1164.all;
use work.marlune_direct.all;

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

architecture direct of many_port_memory is
begin

  process (CLK, a_RA0, b_RA0, c_WE0, c_WA0, c_D0, d_CS0, d_WE0, d_A0, d_D0)
    variable memory  : integer := open_memory(CLK'path_name, "0 16 512",
      "a_RE0 a_RA0:9 b_RE0 b_RA0:9 c_WE0 c_WA0:9 c_D0:16 d_CS0 d_WE0 d_A0:9 d_D0:16 a_Q0:16 b_Q0:16 d_Q0:16");
    variable outputs : std_logic_vector(47 downto 0);
    variable changed : boolean;
  begin
    wake(memory, now, CLK, a_RE0 & a_RA0 & b_RE0 & b_RA0 & c_WE0 & c_WA0 & c_D0 & d_CS0 & d_WE0 & d_A0 & d_D0,
      outputs, changed);
    if changed then
      (a_Q0, b_Q0, d_Q0) <= outputs;
    end if;
  end process;

end architecture;

-- 128 bits, behind one shared port with synchronous reads.
library ieee;
use ieee.std_logic_1164.all;
use work.marlune_direct.all;

entity wide_memory is
  port (
    CLK   : in  std_logic;
    p_CS0 : in  std_logic;
    p_WE0 : in  std_logic;
    p_A0  : in  std_logic_vector(5 downto 0);
    p_D0  : in  std_logic_vector(127 downto 0);
    p_Q0  : out std_logic_vector(127 downto 0));
end entity;

architecture direct of wide_memory is
begin

  process (CLK, p_CS0, p_WE0, p_A0, p_D0)
    variable memory  : integer := open_memory(CLK'path_name, "1 128 64",
      "p_CS0 p_WE0 p_A0:6 p_D0:128 p_Q0:128");
    variable outputs : std_logic_vector(127 downto 0);
    variable changed : boolean;
  begin
    wake(memory, now, CLK, p_CS0 & p_WE0 & p_A0 & p_D0, outputs, changed);
    if changed then
      p_Q0 <= outputs;
    end if;
  end process;

end architecture;

-- The whole 32-bit address range, sparse.
library ieee;
use ieee.std_logic_1164.all;
use work.marlune_direct.all;

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

architecture direct of sparse_memory is
begin

  process (CLK, r_RA0, w_WE0, w_WA0, w_D0)
    variable memory  : integer := open_memory(CLK'path_name, "0 8 4294967295",
      "r_RE0 r_RA0:32 w_WE0 w_WA0:32 w_D0:8 r_Q0:8");
    variable outputs : std_logic_vector(7 downto 0);
    variable changed : boolean;
  begin
    wake(memory, now, CLK, r_RE0 & r_RA0 & w_WE0 & w_WA0 & w_D0, outputs, changed);
    if changed then
      r_Q0 <= outputs;
    end if;
  end process;

end architecture;
