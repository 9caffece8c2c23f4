// A test bench's direct way to the memories, past their ports and in no time: load program images, read and write cells.
//
// Addresses count cells; a cell holds one addressable unit (LAU) of an image, as many bits wide as the second of the
// memory's parameters says. A memory is found by the path of its instance.
//
// An error (no such memory, an image that cannot be loaded or does not fit) ends the simulation with its text. An address
// at or beyond a memory's size is told in the transcript; a read then gives 0 and a write does nothing.
package marlune_dpi;

  // Wide enough for every memory. A memory of fewer bits uses the low ones.
  typedef logic [1023:0] word_t;

  // ---- The library's functions ----

  // Loads the sections of an address space. The memory's name is that of its instance with a suffix ".RAM" (or "_RAM"),
  // which is cut off again: what stands before the last "RAM" of the name, less one character, is the memory. A name
  // without "RAM" is taken whole. Any spelling of the path will do: separators become "_".
  //
  // The units at low_address + phase, then every stride-th, up to high_address (inclusive) go to the cells cell_base /
  // stride, then one by one. All five count units. Cells that get no unit keep their contents. A file is read once, however
  // many memories are filled from it.
  import "DPI-C" function void marlune_dpi_memory_init(
      input string name, input string file, input string address_space, input int unsigned cell_base,
      input int unsigned low_address, input int unsigned high_address, input int unsigned phase,
      input int unsigned stride);

  // Stores into a cell; X and Z become 0. The name must be normalised: see memory_name.
  import "DPI-C" function void marlune_dpi_memory_write(
      input string name, input int unsigned address, input logic [1023:0] data);

  // Reads a cell into the low bits; the bits above the memory's width stay. The name must be normalised.
  import "DPI-C" function void marlune_dpi_memory_read(
      input string name, input int unsigned address, inout logic [1023:0] data);

  // ---- For common use ----

  // The name by which a memory is registered: the path of its instance with "/" or "." between the names, as in
  // "tb.core.banks[2].bank", and "_" for each of  - = / * + % . : , blank ( ) [ ] { } > < @ # & \  in it.
  function automatic string memory_name(string path);
    memory_name = path;
    for (int i = 0; i < path.len(); i++)
      case (path[i])
        "-", "=", "/", "*", "+", "%", ".", ":", ",", " ", "(", ")", "[", "]", "{", "}", ">", "<", "@", "#", "&",
        8'h5C: memory_name.putc(i, "_");
        default: ;
      endcase
  endfunction

  // Loads an address space of an image, the unit at address `base` into cell 0. Units below base are left out.
  function automatic void load_image(string path, string file, string address_space, int unsigned base = 0);
    marlune_dpi_memory_init({path, ".RAM"}, file, address_space, 0, base, 32'hFFFF_FFFF, 0, 1);
  endfunction

  // Loads one bank of a memory that is interleaved unit by unit: the units at base + bank, base + bank + banks, and so on
  // into cells 0, 1, and so on.
  function automatic void load_bank(string path, string file, string address_space, int unsigned bank,
                                    int unsigned banks, int unsigned base = 0);
    marlune_dpi_memory_init({path, ".RAM"}, file, address_space, 0, base, 32'hFFFF_FFFF, bank, banks);
  endfunction

  // The contents of a cell, without sign.
  function automatic word_t peek(string path, int unsigned address);
    peek = '0;
    marlune_dpi_memory_read(memory_name(path), address, peek);
  endfunction

  // Stores into a cell. A write that a port has recorded comes later, at the next edge.
  function automatic void poke(string path, int unsigned address, word_t value);
    marlune_dpi_memory_write(memory_name(path), address, value);
  endfunction

endpackage
