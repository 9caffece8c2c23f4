// One 32-bit memory with a read and a write port, used in every clock cycle; for Verilator and Icarus Verilog. MEMORY is
// the module, and without it there is none: what the test bench alone takes.
`ifndef MODE
`define MODE 0
`endif
`ifndef CYCLES
`define CYCLES 1000000
`endif
module cycle_tb;

  reg clk = 0;
  always #5 clk = !clk;

  reg [9:0] read_address = 0, write_address = 0;
  reg [31:0] data = 1;
  integer count = 0;

`ifdef MEMORY
  wire [31:0] q;
  `MEMORY #(.ADDRESS_BITS(10), .DATA_BITS(32), .MODE(`MODE)) ram (clk, 1'b1, read_address, q, 1'b1, write_address, data);
`else
  wire [31:0] q = data;
`endif

  always @(posedge clk) begin
    read_address <= read_address + 3;
    write_address <= write_address + 5;
    data <= data * 5 + 1;
    count <= count + 1;
    if (count == `CYCLES) begin
      $display("%h", q);
      $finish;
    end
  end

endmodule
