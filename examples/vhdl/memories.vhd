-- Memories with other ports than marlune_memory, made from copies of hdl/ghdl/marlune_memory.vhd. Each has fixed
-- widths, so it needs no generics.

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

-- 128 bits, with one shared port and synchronous reads.
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
