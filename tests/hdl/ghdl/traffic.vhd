-- The same random traffic for memories of many shapes, each in three architectures at once. Inputs and CLK change in several
-- delta cycles of one time, addresses and data follow outputs within it, and the outputs must agree in every delta.

library ieee;
use ieee.std_logic_1164.all;

entity traffic is
  generic (TIMES : positive := 1000);
end entity;

library ieee;
use ieee.math_real.all;
use ieee.numeric_std.all;
use std.env.all;
use std.textio.all;

architecture test of traffic is

  type shape is record
    address_bits, data_bits, synchronous, lau_bits, cells : natural;
  end record;
  type shape_list is array (natural range <>) of shape;
  constant SHAPES : shape_list := (
    (4, 1, 0, 1, 16), (4, 8, 1, 8, 16), (5, 33, 0, 33, 30), (6, 64, 1, 64, 64), (4, 65, 1, 8, 16), (4, 65, 0, 65, 16),
    (5, 128, 1, 128, 30), (4, 1024, 0, 1024, 16), (4, 1024, 1, 1024, 16), (32, 32, 0, 8, 0), (32, 128, 1, 8, 0));

  type address_list is array (0 to 5) of std_logic_vector(31 downto 0);
  type data_list is array (0 to 2) of std_logic_vector(1023 downto 0);

  signal clk       : std_logic := '0';
  signal flags     : std_logic_vector(0 to 15) := (others => '0');
  signal addresses : address_list := (others => (others => '0'));
  signal data      : data_list := (others => (others => '0'));
  signal is_over   : boolean := false;

  type counter is protected
    procedure count(is_equal : boolean);
    impure function compared return natural;
    impure function different return natural;
  end protected;
  type counter is protected body
    variable all_values, bad_values : natural := 0;
    procedure count(is_equal : boolean) is
    begin
      all_values := all_values + 1;
      if not is_equal then
        bad_values := bad_values + 1;
      end if;
    end procedure;
    impure function compared return natural is
    begin
      return all_values;
    end function;
    impure function different return natural is
    begin
      return bad_values;
    end function;
  end protected body;
  shared variable values : counter;

begin

  shaped : for s in SHAPES'range generate
    constant A : positive := SHAPES(s).address_bits;
    constant D : positive := SHAPES(s).data_bits;
    type output_list is array (0 to 2) of std_logic_vector(4 * D downto 0);
    signal q : output_list;   -- a, d, e, f, b
  begin
    ways : for way in output_list'range generate
      signal b_address, d_address : std_logic_vector(A - 1 downto 0);
      signal c_data               : std_logic_vector(D - 1 downto 0);
      alias a_q : std_logic_vector(D - 1 downto 0) is q(way)(4 * D downto 3 * D + 1);
      alias d_q : std_logic_vector(D - 1 downto 0) is q(way)(3 * D downto 2 * D + 1);
      alias e_q : std_logic_vector(D - 1 downto 0) is q(way)(2 * D downto D + 1);
      alias f_q : std_logic_vector(D - 1 downto 0) is q(way)(D downto 1);
    begin
      -- Feedback: from a's data to b's address and c's data, and from b's data to d's address.
      b_address <= addresses(1)(A - 1 downto 0) when flags(13) /= '1' else std_logic_vector(resize(unsigned(a_q), A));
      c_data <= data(0)(D - 1 downto 0) when flags(14) /= '1' else not a_q;
      d_address <= addresses(3)(A - 1 downto 0) when flags(15) /= '1' else (0 => q(way)(0), others => '0');

      fli : if way = 0 generate
        memory : entity work.all_ports(fli)
          generic map (A, D, SHAPES(s).synchronous, SHAPES(s).lau_bits, SHAPES(s).cells)
          port map (clk, flags(0), addresses(0)(A - 1 downto 0), a_q, flags(1 to 2), b_address, q(way)(0), flags(3 to 4),
            addresses(1)(A - 1 downto 0), c_data, flags(5), flags(6), d_address, data(1)(D - 1 downto 0), d_q, flags(7),
            addresses(4)(A - 1 downto 0), addresses(5)(A - 1 downto 0), flags(8 to 9), flags(10), data(2)(D - 1 downto 0),
            e_q, addresses(0)(A - 1 downto 0), f_q, flags(11), flags(12), flags(6));
      end generate;
      direct : if way = 1 generate
        memory : entity work.all_ports(direct)
          generic map (A, D, SHAPES(s).synchronous, SHAPES(s).lau_bits, SHAPES(s).cells)
          port map (clk, flags(0), addresses(0)(A - 1 downto 0), a_q, flags(1 to 2), b_address, q(way)(0), flags(3 to 4),
            addresses(1)(A - 1 downto 0), c_data, flags(5), flags(6), d_address, data(1)(D - 1 downto 0), d_q, flags(7),
            addresses(4)(A - 1 downto 0), addresses(5)(A - 1 downto 0), flags(8 to 9), flags(10), data(2)(D - 1 downto 0),
            e_q, addresses(0)(A - 1 downto 0), f_q, flags(11), flags(12), flags(6));
      end generate;
      model : if way = 2 generate
        memory : entity work.all_ports(model)
          generic map (A, D, SHAPES(s).synchronous, SHAPES(s).lau_bits, SHAPES(s).cells)
          port map (clk, flags(0), addresses(0)(A - 1 downto 0), a_q, flags(1 to 2), b_address, q(way)(0), flags(3 to 4),
            addresses(1)(A - 1 downto 0), c_data, flags(5), flags(6), d_address, data(1)(D - 1 downto 0), d_q, flags(7),
            addresses(4)(A - 1 downto 0), addresses(5)(A - 1 downto 0), flags(8 to 9), flags(10), data(2)(D - 1 downto 0),
            e_q, addresses(0)(A - 1 downto 0), f_q, flags(11), flags(12), flags(6));
      end generate;
    end generate;

    compare : process (q)
      variable l : line;
    begin
      values.count(q(0) = q(2) and q(1) = q(2));
      if (q(0) /= q(2) or q(1) /= q(2)) and values.different < 10 then
        write(l, "shape " & integer'image(s) & " at " & time'image(now) & ": VPI " & to_hstring(q(0)) & ", direct " &
          to_hstring(q(1)) & ", model " & to_hstring(q(2)));
        writeline(output, l);
      end if;
    end process;
  end generate;

  drive : process
    variable seed1, seed2 : positive := 1;

    impure function random(limit : positive) return natural is
      variable number : real;
    begin
      uniform(seed1, seed2, number);
      return natural(floor(number * real(limit)));
    end function;

    -- '0' or '1', rarely another value.
    impure function random_element return std_logic is
    begin
      if random(50) = 0 then
        return std_logic'val(random(9));
      end if;
      return std_logic'val(std_logic'pos('0') + random(2));
    end function;

    -- One of 16, for an address of any length: the same four elements over and over.
    impure function random_address return std_logic_vector is
      constant four : std_logic_vector(3 downto 0) := random_element & random_element & random_element & random_element;
    begin
      return four & four & four & four & four & four & four & four;
    end function;

    -- 13 elements over and over, or a single '1' at the end.
    impure function random_data return std_logic_vector is
      variable result : std_logic_vector(1023 downto 0) := (0 => '1', others => '0');
    begin
      if random(4) > 0 then
        for i in 0 to 12 loop
          result(i) := random_element;
        end loop;
        for i in 13 to result'left loop
          result(i) := result(i - 13);
        end loop;
      end if;
      return result;
    end function;

    -- What may change in one delta cycle. Few signals change in later ones.
    procedure change(one_of : positive) is
    begin
      if random(one_of) = 0 then
        clk <= random_element when random(10) = 0 else not clk;
      end if;
      for i in flags'range loop
        if random(2 * one_of) = 0 then
          flags(i) <= random_element;
        end if;
      end loop;
      for i in addresses'range loop
        if random(2 * one_of) = 0 then
          addresses(i) <= random_address;
        end if;
      end loop;
      for i in data'range loop
        if random(2 * one_of) = 0 then
          data(i) <= random_data;
        end if;
      end loop;
    end procedure;

    variable l : line;
  begin
    clk <= '1';
    wait for 0 fs;
    for i in 1 to TIMES loop
      change(2);
      for delta in 1 to random(5) loop
        wait for 0 fs;
        change(8);
      end loop;
      wait for (1 + random(3)) * 1 ns + random(2) * 1 fs;
    end loop;
    write(l, integer'image(values.compared) & " values compared, " & integer'image(values.different) & " differ");
    writeline(output, l);
    assert values.different = 0 and values.compared > 3 * TIMES severity failure;
    finish;
  end process;
end architecture;
