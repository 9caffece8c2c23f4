// marlune_memory of mode 1 as a plain array: the processor without the library, to compare its speed.
module marlune_memory #(
    parameter ADDRESS_BITS = 10,
    parameter DATA_BITS = 32,
    parameter PARAMETERS = "",
    parameter MODE = 1
) (
    input                         CLK,
    input                         r_RE0,
    input      [ADDRESS_BITS-1:0] r_RA0,
    output reg [DATA_BITS-1:0]    r_Q0,
    input                         w_WE0,
    input      [ADDRESS_BITS-1:0] w_WA0,
    input      [DATA_BITS-1:0]    w_D0
);
  reg [DATA_BITS-1:0] cells[0:2**ADDRESS_BITS-1];

  always @(posedge CLK) begin
    if (w_WE0) cells[w_WA0] <= w_D0;
    if (r_RE0) r_Q0 <= cells[r_RA0];
  end

  function automatic [DATA_BITS-1:0] peek(input [31:0] address);
    peek = cells[address[ADDRESS_BITS-1:0]];
  endfunction

  task automatic poke(input [31:0] address, input [DATA_BITS-1:0] value);
    cells[address[ADDRESS_BITS-1:0]] = value;
  endtask
endmodule
