// A test bench's backdoor to the memories: it loads program images, and reads and writes cells, without the ports and
// in zero time.
//
// Addresses count cells. A cell holds one LAU (least addressable unit) of an image, as many bits as the second of the
// memory's parameters says. A memory is found by the path of its instance.
//
// An error (no such memory, an image that cannot be loaded or has LAUs of another width) ends the simulation with a
// message. An address at or beyond a memory's size is reported; a read then gives 0, and a write has no effect.
/* verilator lint_off TIMESCALEMOD */ // a test bench has a timescale or none
package marlune_dpi;

  // A memory of fewer bits uses the low ones. There are none of more.
  typedef logic [1023:0] word_t;

  // ---- The library's functions ----

  // Loads the sections of an address space. The memory's name is that of its instance with a suffix ".RAM" (or "_RAM"),
  // which is removed again: the last "RAM" of the name, the character before it and all that follows are dropped. A
  // name without "RAM" is used as a whole. Its separators may be of any kind, because they become "_".
  //
  // The LAUs at low_address + phase, then every stride-th, up to high_address (inclusive) go to the cells from
  // cell_base / stride on. All five count LAUs. Cells that get no LAU keep their contents. A file is read once, however
  // many memories are filled from it.
  import "DPI-C" function void marlune_dpi_memory_init(
      input string name, input string file, input string address_space, input int unsigned cell_base,
      input int unsigned low_address, input int unsigned high_address, input int unsigned phase,
      input int unsigned stride);

  // Stores into a cell; X and Z become 0. The name must be normalised: see memory_name.
  import "DPI-C" function void marlune_dpi_memory_write(
      input string name, input int unsigned address, input logic [1023:0] data);

  // Reads a cell into the low bits; the bits above the memory's width keep their values. The name must be normalised.
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

  // Loads an address space of an image, the LAU at address `base` into cell 0. LAUs below `base` are skipped.
  function automatic void load_image(string path, string file, string address_space, int unsigned base = 0);
    marlune_dpi_memory_init({path, ".RAM"}, file, address_space, 0, base, 32'hFFFF_FFFF, 0, 1);
  endfunction

  // Loads one bank of a memory that is interleaved LAU by LAU: the LAUs at `base` + `bank`, `base` + `bank` + `banks`,
  // and so on into cells 0, 1, and so on.
  function automatic void load_bank(string path, string file, string address_space, int unsigned bank,
                                    int unsigned banks, int unsigned base = 0);
    if (banks > 0 && bank >= banks) $fatal(1, "%s: there is no bank %0d of %0d.", path, bank, banks);
    marlune_dpi_memory_init({path, ".RAM"}, file, address_space, 0, base, 32'hFFFF_FFFF, bank, banks);
  endfunction

  // The contents of a cell, without sign. Cast them to the memory's width: "%h" of all 1024 bits prints 256 digits.
  function automatic word_t peek(string path, int unsigned address);
    peek = '0;
    marlune_dpi_memory_read(memory_name(path), address, peek);
  endfunction

  // Stores into a cell. A write that a port has already recorded follows at the next edge. Some simulators want the
  // value to have all 1024 bits: word_t'(value).
  function automatic void poke(string path, int unsigned address, word_t value);
    marlune_dpi_memory_write(memory_name(path), address, value);
  endfunction

  // ---- For the module below ----

  // Changes whenever the modules are to look at their clocks.
  /* verilator lint_off MULTIDRIVEN */
  int unsigned turn;
  /* verilator lint_on MULTIDRIVEN */

endpackage

// The part of a memory module that is the same for all port groups; marlune_memory.sv and its copies instantiate it. It
// serves the ports by direct calls, in any simulator that has DPI.
//
// PARAMETERS is "mode width cells", or "" to derive them from MODE, DATA_BITS and ADDRESS_BITS.
//
// PORTS has the names of all ports but CLK, each followed by a blank. WIDTHS has their widths in bits, 32 bits each,
// after 32 bits of 0. `inputs` and `outputs` have their values. All begin with the first port.
/* verilator lint_off DECLFILENAME */ // in one file with its package
module marlune_ports #(
    parameter string PARAMETERS = "",
    parameter MODE = 0,
    parameter DATA_BITS = 32,
    parameter ADDRESS_BITS = 10,
    parameter PORTS = "",
    parameter WIDTHS = 32'd0,
    parameter INPUT_BITS = 1,
    parameter OUTPUT_BITS = 1
) (
    input  bit                   CLK,
    input  bit [ INPUT_BITS-1:0] inputs,
    output bit [OUTPUT_BITS-1:0] outputs
);

  import "DPI-C" function chandle marlune_sv_open(
      input string scope, input string parameters, input int unsigned mode, input int unsigned data_bits,
      input int unsigned address_bits, input string ports, input bit [$bits(WIDTHS)-1:0] widths);
  import "DPI-C" function longint unsigned marlune_sv_rise(
      input chandle memory, input real now, output bit [OUTPUT_BITS-1:0] outputs);
  import "DPI-C" function int unsigned marlune_sv_inputs(
      input chandle memory, input real now, input longint unsigned stamp, input bit [INPUT_BITS-1:0] inputs);
  import "DPI-C" function longint unsigned marlune_sv_look(
      input chandle memory, input real now, input bit clk, output bit [OUTPUT_BITS-1:0] outputs);

  // Not in an initial block, because the test bench may load the memory in one.
  chandle handle = marlune_sv_open($sformatf("%m"), PARAMETERS, MODE, DATA_BITS, ADDRESS_BITS, PORTS, WIDTHS);

  bit [OUTPUT_BITS-1:0] at_rise, at_look, risen, looked;
  longint unsigned rise_stamp, look_stamp, rise, look;

  /* verilator lint_off BLKSEQ */ // of what the calls return

  // The stamp differs from edge to edge. It makes the inputs be reported after each edge, changed or not: when the
  // registers of the same clock have their new values, and again for each later change.
  always @(posedge CLK) begin
    rise = marlune_sv_rise(handle, $realtime, risen);
    at_rise <= risen;
    rise_stamp <= rise;
  end

  always @* marlune_dpi::turn = marlune_sv_inputs(handle, $realtime, rise_stamp, inputs);

  // Fetches outputs that have changed after the rise, as they do in mode 0. In mode 1 this seldom runs.
  always @(marlune_dpi::turn) begin
    look = marlune_sv_look(handle, $realtime, CLK, looked);
    at_look <= looked;
    look_stamp <= look;
  end

  /* verilator lint_on BLKSEQ */

  assign outputs = look_stamp > rise_stamp ? at_look : at_rise;

endmodule
