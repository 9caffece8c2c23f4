-- Compile this package once, unchanged; the entities of your memories (copies of marlune_memory.vhd) use it.

library ieee;
use ieee.std_logic_1164.all;

package marlune_fli is

  -- The characters of a text, 8 bits each. VPI shows only signals, so a memory has the text of its foreign attribute in
  -- one.
  function to_bits(text : string) return std_logic_vector;

end package;

library ieee;
use ieee.numeric_std.all;

package body marlune_fli is

  function to_bits(text : string) return std_logic_vector is
    variable bits : std_logic_vector(0 to 8 * text'length - 1);
  begin
    for i in 0 to text'length - 1 loop
      bits(8 * i to 8 * i + 7) := std_logic_vector(to_unsigned(character'pos(text(text'left + i)), 8));
    end loop;
    return bits;
  end function;

end package body;
