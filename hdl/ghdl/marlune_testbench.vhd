-- A test bench's backdoor to the memories, for GHDL: it loads program images, and reads and writes cells, without the
-- ports and in zero time. It reaches directly served memories, and those with a foreign architecture that run through
-- VPI.
--
-- A memory is found by the path of its instance, written as "my_tb.u0", as "/my_tb/u0", or as 'path_name gives it, in
-- upper or lower case. The index of a generate statement is in brackets: "my_tb.banks(2).bank".
--
-- Addresses count cells. A cell holds one LAU (least addressable unit) of an image, as many bits as the second of the
-- memory's parameters says. The overloads with unsigned are for addresses from 2**31 on.
--
-- An error (no such memory, an image that cannot be loaded or has LAUs of another width) ends the simulation with a
-- message. An address at or beyond a memory's size is reported; a read then gives 0, and a write has no effect.

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

package marlune_testbench is

  -- Loads an address space of an image, the LAU at address `base` into cell 0. LAUs below `base` are skipped, and cells
  -- that get no LAU keep their contents. A file is read once, however many memories are filled from it.
  procedure load_image(path, file_name, address_space : string; base : natural := 0);
  procedure load_image(path, file_name, address_space : string; base : unsigned);

  -- Loads one bank of a memory that is interleaved LAU by LAU: the LAUs at `base` + `bank`, `base` + `bank` + `banks`,
  -- and so on into cells 0, 1, and so on.
  procedure load_bank(path, file_name, address_space : string; bank, banks : natural; base : natural := 0);
  procedure load_bank(path, file_name, address_space : string; bank, banks : natural; base : unsigned);

  -- Stores the low bits of the value into a cell. Elements other than '1' become 0. A write that a port has already
  -- recorded follows at the next edge.
  procedure poke(path : string; address : natural; value : std_logic_vector);
  procedure poke(path : string; address : unsigned; value : std_logic_vector);

  -- The low bits of a cell, as many as the value has elements. Those beyond the cell's width are '0'.
  procedure peek(path : string; address : natural; value : out std_logic_vector);
  procedure peek(path : string; address : unsigned; value : out std_logic_vector);

end package;

package body marlune_testbench is

  -- Numbers of 32 bits as the library takes them.
  subtype word is std_logic_vector(31 downto 0);

  function to_word(number : natural) return word is
  begin
    return word(to_unsigned(number, 32));
  end function;

  function to_word(number : unsigned) return word is
    alias digits : unsigned(number'length - 1 downto 0) is number;
  begin
    assert not is_x(number)
      report "marlune_testbench: an address has elements other than '0' and '1'" severity failure;
    for i in 32 to number'length - 1 loop
      assert digits(i) = '0'
        report "marlune_testbench: an address has more than 32 bits" severity failure;
    end loop;
    return word(resize(digits, 32));
  end function;

  procedure load(path, file_name, address_space : string; base, bank, banks : std_logic_vector) is
  begin
    report "libmarlune_direct.so is called in place of this" severity failure;
  end procedure;
  attribute foreign of load : procedure is "VHPIDIRECT libmarlune_direct.so marlune_vhdl_load";

  procedure poke_word(path : string; address, value : std_logic_vector) is
  begin
    report "libmarlune_direct.so is called in place of this" severity failure;
  end procedure;
  attribute foreign of poke_word : procedure is "VHPIDIRECT libmarlune_direct.so marlune_vhdl_poke";

  procedure peek_word(path : string; address : std_logic_vector; value : out std_logic_vector) is
  begin
    report "libmarlune_direct.so is called in place of this" severity failure;
  end procedure;
  attribute foreign of peek_word : procedure is "VHPIDIRECT libmarlune_direct.so marlune_vhdl_peek";

  procedure load_image(path, file_name, address_space : string; base : natural := 0) is
  begin
    load(path, file_name, address_space, to_word(base), to_word(0), to_word(1));
  end procedure;

  procedure load_image(path, file_name, address_space : string; base : unsigned) is
  begin
    load(path, file_name, address_space, to_word(base), to_word(0), to_word(1));
  end procedure;

  procedure load_bank(path, file_name, address_space : string; bank, banks : natural; base : natural := 0) is
  begin
    load(path, file_name, address_space, to_word(base), to_word(bank), to_word(banks));
  end procedure;

  procedure load_bank(path, file_name, address_space : string; bank, banks : natural; base : unsigned) is
  begin
    load(path, file_name, address_space, to_word(base), to_word(bank), to_word(banks));
  end procedure;

  procedure poke(path : string; address : natural; value : std_logic_vector) is
  begin
    poke_word(path, to_word(address), value);
  end procedure;

  procedure poke(path : string; address : unsigned; value : std_logic_vector) is
  begin
    poke_word(path, to_word(address), value);
  end procedure;

  procedure peek(path : string; address : natural; value : out std_logic_vector) is
  begin
    peek_word(path, to_word(address), value);
  end procedure;

  procedure peek(path : string; address : unsigned; value : out std_logic_vector) is
  begin
    peek_word(path, to_word(address), value);
  end procedure;

end package body;
