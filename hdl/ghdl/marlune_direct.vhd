-- What marlune_memory.vhd in this folder and its copies call, for GHDL, which calls the library directly.

library ieee;
use ieee.std_logic_1164.all;

package marlune_direct is

  -- Elaborates a memory; an error ends the simulation. Ports are given as "name:length" for a vector and "name" for a
  -- std_logic, separated by blanks. Those whose names end in Q0 are outputs. If `parameters` is empty, the second form
  -- derives them from the three numbers.
  impure function open_memory(clock_path, parameters, ports : string) return integer;
  impure function open_memory(clock_path, parameters : string; mode, data_bits, address_bits : natural; ports : string)
    return integer;

  -- Reports an event on the clock or an input. The values are in the order of the ports. Outputs are written if
  -- `changed`.
  procedure wake(memory : integer; at : time; clk : std_logic; inputs : std_logic_vector;
                 outputs : inout std_logic_vector; changed : out boolean);
  attribute foreign of wake : procedure is "VHPIDIRECT libmarlune_direct.so marlune_vhdl_wake";

end package;

package body marlune_direct is

  impure function open_foreign(clock_path, parameters : string; mode, data_bits, address_bits : integer; ports : string)
    return integer is
  begin
    report "libmarlune_direct.so is called in place of this" severity failure;
    return 0;
  end function;
  attribute foreign of open_foreign : function is "VHPIDIRECT libmarlune_direct.so marlune_vhdl_open";

  procedure wake(memory : integer; at : time; clk : std_logic; inputs : std_logic_vector;
                 outputs : inout std_logic_vector; changed : out boolean) is
  begin
    report "libmarlune_direct.so is called in place of this" severity failure;
  end procedure;

  impure function open_memory(clock_path, parameters, ports : string) return integer is
  begin
    return open_foreign(clock_path, parameters, 0, 0, 0, ports);
  end function;

  impure function open_memory(clock_path, parameters : string; mode, data_bits, address_bits : natural; ports : string)
    return integer is
  begin
    return open_foreign(clock_path, parameters, mode, data_bits, address_bits, ports);
  end function;

end package body;
