-- What a memory must do, as a model that has nothing in common with the library but the rules:
--
-- At a rising edge, the writes that were recorded at the edge before reach the cells, port by port in the order of
-- their prefixes. Then each port reads: the contents at its address, or, when reads are synchronous, what it read at
-- the edge before (zero at first). Then each write port that is enabled records its write. What counts is the inputs'
-- last value at the edge's time.

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

package reference_memory is

  subtype word is std_logic_vector(127 downto 0);   -- the widest here; narrower data uses its low bits
  subtype cell_address is unsigned(31 downto 0);
  subtype port_number is natural range 0 to 3;      -- of the prefixes in their order

  type memory is protected
    procedure configure(reads_are_synchronous : boolean; number_of_cells : cell_address);
    procedure clock_edge;
    -- What the port drives at this edge.
    procedure read(port_read : port_number; address : cell_address; value : out word);
    procedure write(port_written : port_number; enabled : boolean; address : cell_address; value : word);
  end protected;

end package;

package body reference_memory is

  type memory is protected body

    type cell;
    type cell_pointer is access cell;
    type cell is record
      address : cell_address;
      value   : word;
      following : cell_pointer;
    end record;
    type bucket_array is array (0 to 1023) of cell_pointer;
    type word_array is array (port_number) of word;
    type recorded_write is record
      valid   : boolean;
      address : cell_address;
      value   : word;
    end record;
    type write_array is array (port_number) of recorded_write;

    variable buckets     : bucket_array;
    variable synchronous : boolean;
    variable size        : cell_address;
    variable samples     : word_array := (others => (others => '0'));
    variable outputs     : word_array := (others => (others => '0'));
    variable pending     : write_array := (others => (false, (others => '0'), (others => '0')));

    impure function bucket_of(address : cell_address) return natural is
    begin
      return to_integer(address(9 downto 0) xor address(19 downto 10) xor address(31 downto 22));
    end function;

    -- The cell at an address, null when it was never written.
    impure function find(address : cell_address) return cell_pointer is
      variable found : cell_pointer := buckets(bucket_of(address));
    begin
      while found /= null and found.address /= address loop
        found := found.following;
      end loop;
      return found;
    end function;

    procedure store(address : cell_address; value : word) is
      variable target : cell_pointer := find(address);
      constant bucket : natural := bucket_of(address);
    begin
      if target /= null then
        target.value := value;
      else
        buckets(bucket) := new cell'(address, value, buckets(bucket));
      end if;
    end procedure;

    procedure configure(reads_are_synchronous : boolean; number_of_cells : cell_address) is
    begin
      synchronous := reads_are_synchronous;
      size := number_of_cells;
    end procedure;

    procedure clock_edge is
    begin
      outputs := samples;
      samples := (others => (others => '0'));
      for p in port_number loop
        if pending(p).valid and pending(p).address < size then
          store(pending(p).address, pending(p).value);
        end if;
        pending(p).valid := false;
      end loop;
    end procedure;

    procedure read(port_read : port_number; address : cell_address; value : out word) is
      variable source   : cell_pointer := find(address);
      variable contents : word := (others => '0');
    begin
      if source /= null then
        contents := source.value;
      end if;
      if synchronous then
        samples(port_read) := contents;
        value := outputs(port_read);
      else
        value := contents;
      end if;
    end procedure;

    procedure write(port_written : port_number; enabled : boolean; address : cell_address; value : word) is
    begin
      pending(port_written) := (enabled, address, value);
    end procedure;

  end protected body;

end package body;
