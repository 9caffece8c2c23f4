// A small processor: 16 registers of 32 bits, one instruction a cycle, a program memory of 32-bit words and a data memory of
// bytes, interleaved over four banks so that an aligned word is one cell of each.
//
// An instruction is {operation[31:28], rd[27:24], rs[23:20], 4'h0, immediate[15:0]}; program.s lists the operations.
//
// A memory's Q0 follows the address in the time step of the clock edge that changes it. So the instruction is there as soon
// as the program counter is, and the loaded word as soon as the instruction is. A store takes effect at the next edge.
module processor #(
    parameter DATA_BASE = 32'h1000  // address of the data memory's first byte
) (
    input  logic        clk,
    input  logic        reset,
    output logic        halted,
    output logic [31:0] cycles
);
  localparam ADDRESS_BITS = 8;  // of the cells of each memory

  typedef enum logic [3:0] {HALT, LI, ADD, ADDI, LW, SW, BNE} operation_t;

  logic [31:0] registers[16];
  logic [31:0] pc;
  logic [31:0] instruction, loaded, target, offset;
  logic        store;

  operation_t        operation;
  logic       [ 3:0] rd, rs;
  logic       [31:0] immediate;

  assign operation = operation_t'(instruction[31:28]);
  assign rd        = instruction[27:24];
  assign rs        = instruction[23:20];
  assign immediate = 32'(signed'(instruction[15:0]));

  marlune_memory #(ADDRESS_BITS, 32, "0 32 256") program_memory (
      .CLK(clk), .r_RE0(1'b1), .r_RA0(pc[ADDRESS_BITS-1:0]), .r_Q0(instruction),
      .w_WE0(1'b0), .w_WA0('0), .w_D0('0));

  assign target = registers[rs] + immediate;
  assign offset = target - DATA_BASE;
  assign store  = operation == SW && !reset && !halted;

  for (genvar i = 0; i < 4; i++) begin : banks
    marlune_memory #(ADDRESS_BITS, 8, "0 8 256") bank (
        .CLK(clk), .r_RE0(1'b1), .r_RA0(offset[ADDRESS_BITS+1:2]), .r_Q0(loaded[8*i+:8]),
        .w_WE0(store), .w_WA0(offset[ADDRESS_BITS+1:2]), .w_D0(registers[rd][8*i+:8]));
  end

  always_ff @(posedge clk)
    if (reset) begin
      pc     <= 0;
      halted <= 0;
      cycles <= 0;
    end else if (!halted) begin
      pc     <= pc + 1;
      cycles <= cycles + 1;
      case (operation)
        LI:      registers[rd] <= {16'h0000, instruction[15:0]};
        ADD:     registers[rd] <= registers[rd] + registers[rs];
        ADDI:    registers[rd] <= registers[rd] + immediate;
        LW:      registers[rd] <= loaded;
        SW:      ;
        BNE:     if (registers[rd] != registers[rs]) pc <= pc + immediate;
        default: halted <= 1;
      endcase
    end
endmodule
