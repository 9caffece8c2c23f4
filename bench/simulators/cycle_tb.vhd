-- One 32-bit memory with a read and a write port, used in every clock cycle. KIND is "none" (what the test bench alone
-- takes), "signal" or "variable" (arrays of the language), "direct" or "foreign" (this library).

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

entity native_memory is
  generic (
    KIND         : string;
    ADDRESS_BITS : positive := 10;
    DATA_BITS    : positive := 32);
  port (
    CLK   : in  std_logic;
    r_RE0 : in  std_logic;
    r_RA0 : in  std_logic_vector(ADDRESS_BITS - 1 downto 0);
    r_Q0  : out std_logic_vector(DATA_BITS - 1 downto 0);
    w_WE0 : in  std_logic;
    w_WA0 : in  std_logic_vector(ADDRESS_BITS - 1 downto 0);
    w_D0  : in  std_logic_vector(DATA_BITS - 1 downto 0));
end entity;

architecture rtl of native_memory is
  type cell_array is array (0 to 2**ADDRESS_BITS - 1) of std_logic_vector(DATA_BITS - 1 downto 0);
begin

  signals : if KIND = "signal" generate
    signal cells : cell_array := (others => (others => '0'));
  begin
    process (CLK)
    begin
      if rising_edge(CLK) then
        if w_WE0 = '1' then
          cells(to_integer(unsigned(w_WA0))) <= w_D0;
        end if;
        if r_RE0 = '1' then
          r_Q0 <= cells(to_integer(unsigned(r_RA0)));
        end if;
      end if;
    end process;
  end generate;

  variables : if KIND = "variable" generate
    process (CLK)
      variable cells : cell_array := (others => (others => '0'));
    begin
      if rising_edge(CLK) then
        if r_RE0 = '1' then
          r_Q0 <= cells(to_integer(unsigned(r_RA0)));
        end if;
        if w_WE0 = '1' then
          cells(to_integer(unsigned(w_WA0))) := w_D0;
        end if;
      end if;
    end process;
  end generate;

end architecture;

library foreign_memories;
library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;
use std.env.finish;

entity cycle_tb is
  generic (
    KIND   : string  := "none";
    MODE   : natural := 0;
    CYCLES : natural := 50_000);
end entity;

architecture test of cycle_tb is
  signal clk                         : std_logic := '0';
  signal read_address, write_address : unsigned(9 downto 0) := (others => '0');
  signal data                        : unsigned(31 downto 0) := to_unsigned(1, 32);
  signal q                           : std_logic_vector(31 downto 0);
  signal count                       : natural := 0;
begin

  clk <= not clk after 5 ns;

  process (clk)
  begin
    if rising_edge(clk) then
      read_address <= read_address + 3;
      write_address <= write_address + 5;
      data <= data(30 downto 0) & not data(31);
      count <= count + 1;
      if count = CYCLES then
        report to_hstring(q);
        finish;
      end if;
    end if;
  end process;

  none : if KIND = "none" generate
    q <= std_logic_vector(data);
  end generate;

  native : if KIND = "signal" or KIND = "variable" generate
    ram : entity work.native_memory generic map (KIND)
      port map (clk, '1', std_logic_vector(read_address), q, '1', std_logic_vector(write_address),
                std_logic_vector(data));
  end generate;

  direct : if KIND = "direct" generate
    ram : entity work.marlune_memory(direct) generic map (MODE => MODE)
      port map (clk, '1', std_logic_vector(read_address), q, '1', std_logic_vector(write_address),
                std_logic_vector(data));
  end generate;

  foreign_architecture : if KIND = "foreign" generate
    ram : entity foreign_memories.marlune_memory
      port map (clk, '1', std_logic_vector(read_address), q, '1', std_logic_vector(write_address),
                std_logic_vector(data));
  end generate;

end architecture;
