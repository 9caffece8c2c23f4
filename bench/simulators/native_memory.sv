// An array of the language: what the memory costs without any library.
module native_memory #(
    parameter ADDRESS_BITS = 10,
    parameter DATA_BITS = 32,
    parameter MODE = 0
) (
    input                         CLK,
    input                         r_RE0,
    input      [ADDRESS_BITS-1:0] r_RA0,
    output reg [DATA_BITS-1:0]    r_Q0,
    input                         w_WE0,
    input      [ADDRESS_BITS-1:0] w_WA0,
    input      [DATA_BITS-1:0]    w_D0
);

  reg [DATA_BITS-1:0] cells[2**ADDRESS_BITS];

  always @(posedge CLK) begin
    if (w_WE0) cells[w_WA0] <= w_D0;
    if (r_RE0) r_Q0 <= cells[r_RA0];
  end

endmodule
