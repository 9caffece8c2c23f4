-- The same random traffic for memories of many shapes, each in three architectures at once. Inputs and CLK change in
-- several delta cycles of one time, addresses and data follow outputs within it. The outputs must agree in every delta.

entity traffic is
  generic (TIMES : positive := 3000);
end entity;

library ieee;
use ieee.std_logic_1164.all;
use std.env.all;
use work.random_numbers.all;

architecture test of traffic is

  type shape is record
    address_bits, data_bits, mode, lau_bits, cells : natural;
  end record;
  type shape_list is array (natural range <>) of shape;
  constant SHAPES : shape_list := (
    (4, 1, 0, 1, 16), (4, 8, 1, 8, 16), (5, 33, 0, 33, 30), (6, 64, 1, 64, 64), (4, 65, 1, 8, 16), (4, 65, 0, 65, 16),
    (5, 128, 1, 128, 30), (4, 1024, 0, 1024, 16), (4, 1024, 1, 1024, 16), (32, 32, 0, 8, 0), (32, 128, 1, 8, 0));

  type nibble_list is array (0 to 3) of std_logic_vector(3 downto 0);
  type data_list is array (0 to 1) of std_logic_vector(12 downto 0);
  type count_list is array (SHAPES'range) of natural;

  signal clk     : std_logic := '0';
  signal flags   : std_logic_vector(0 to 9) := (others => '0');
  signal nibbles : nibble_list := (others => x"0");
  signal data    : data_list := (others => (others => '0'));
  signal changes : count_list := (others => 0);

  -- A vector of any length from the same elements over and over.
  function repeated(elements : std_logic_vector; length : positive) return std_logic_vector is
    variable result : std_logic_vector(length - 1 downto 0);
  begin
    for i in result'range loop
      result(i) := elements(i mod elements'length);
    end loop;
    return result;
  end function;

begin

  shaped : for s in SHAPES'range generate
    constant A : positive := SHAPES(s).address_bits;
    constant D : positive := SHAPES(s).data_bits;
    type output_list is array (0 to 2) of std_logic_vector(2 * D downto 0);
    signal q : output_list;   -- a, d, b
  begin
    ways : for way in output_list'range generate
      signal c_data             : std_logic_vector(D - 1 downto 0);
      signal b_nibble, d_nibble : std_logic_vector(3 downto 0);
      signal a_ra, b_ra, c_wa, d_ra : std_logic_vector(A - 1 downto 0);
      alias a_q : std_logic_vector(D - 1 downto 0) is q(way)(2 * D downto D + 1);
      alias d_q : std_logic_vector(D - 1 downto 0) is q(way)(D downto 1);
    begin
      -- Feedback: from a's data to b's address and c's data, and from b's data to d's address.
      b_nibble <= nibbles(1) when flags(7) /= '1' else repeated(a_q(minimum(D, 4) - 1 downto 0), 4);
      d_nibble <= nibbles(3) when flags(9) /= '1' else "000" & q(way)(0);
      c_data <= repeated(data(0), D) when flags(8) /= '1' else not a_q;
      a_ra <= repeated(nibbles(0), A);
      b_ra <= repeated(b_nibble, A);
      c_wa <= repeated(nibbles(2), A);
      d_ra <= repeated(d_nibble, A);

      fli : if way = 0 generate
        memory : entity work.all_ports(fli) generic map (A, D, SHAPES(s).mode, SHAPES(s).lau_bits, SHAPES(s).cells)
          port map (clk, flags(0), flags(1), flags(2), flags(3 to 4), flags(5 to 6), a_ra, c_wa, d_ra, b_ra, c_data,
            repeated(data(1), D), a_q, d_q, q(way)(0));
      end generate;
      direct : if way = 1 generate
        memory : entity work.all_ports(direct) generic map (A, D, SHAPES(s).mode, SHAPES(s).lau_bits, SHAPES(s).cells)
          port map (clk, flags(0), flags(1), flags(2), flags(3 to 4), flags(5 to 6), a_ra, c_wa, d_ra, b_ra, c_data,
            repeated(data(1), D), a_q, d_q, q(way)(0));
      end generate;
      model : if way = 2 and D <= 128 generate
        memory : entity work.all_ports(model) generic map (A, D, SHAPES(s).mode, SHAPES(s).lau_bits, SHAPES(s).cells)
          port map (clk, flags(0), flags(1), flags(2), flags(3 to 4), flags(5 to 6), a_ra, c_wa, d_ra, b_ra, c_data,
            repeated(data(1), D), a_q, d_q, q(way)(0));
      end generate;
    end generate;

    compare : process (q)
    begin
      assert q(0) = q(1) and (q(0) = q(2) or D > 128) report "shape " & integer'image(s) & " at " & time'image(now) &
        ": VPI " & to_hstring(q(0)) & ", direct " & to_hstring(q(1)) & ", model " & to_hstring(q(2)) severity failure;
      changes(s) <= changes(s) + 1;
    end process;
  end generate;

  drive : process
    variable random : generator;

    -- '0' or '1', rarely another value.
    impure function random_elements(length : positive) return std_logic_vector is
      variable result : std_logic_vector(length - 1 downto 0);
    begin
      for i in result'range loop
        result(i) := std_logic'val(random.below(9)) when random.below(50) = 0 else
                     std_logic'val(std_logic'pos('0') + random.below(2));
      end loop;
      return result;
    end function;

    -- What may change in one delta cycle.
    procedure change(one_of : positive) is
    begin
      if random.below(one_of) = 0 then
        clk <= std_logic'val(random.below(9)) when random.below(10) = 0 else not clk;
      end if;
      for i in flags'range loop
        if random.below(2 * one_of) = 0 then
          flags(i to i) <= random_elements(1);
        end if;
      end loop;
      for i in nibbles'range loop
        if random.below(2 * one_of) = 0 then
          nibbles(i) <= random_elements(4);
        end if;
      end loop;
      for i in data'range loop
        if random.below(2 * one_of) = 0 then
          data(i) <= random_elements(13) when random.below(4) > 0 else (0 => '1', others => '0');
        end if;
      end loop;
    end procedure;
  begin
    clk <= '1';
    wait for 0 fs;
    for i in 1 to TIMES loop
      change(2);
      for delta in 1 to random.below(5) loop
        wait for 0 fs;
        change(8);
      end loop;
      wait for (1 + random.below(3)) * 1 ns + random.below(2) * 1 fs;
    end loop;
    for s in SHAPES'range loop
      assert changes(s) > TIMES / 20 report "shape " & integer'image(s) & " rarely changed" severity failure;
    end loop;
    report "PASSED";
    finish;
  end process;
end architecture;
