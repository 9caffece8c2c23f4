// A processor for the instructions of RV32I: two clock cycles for an instruction, three for a load.
//
// The program memory has 32-bit words from address 0 on, where the processor starts. The data memory begins at
// DATA_BASE. Its bytes are interleaved over four banks, so that an aligned word is one cell of each, and a store of a
// byte or a half writes to some banks only.
//
// All memories are of mode 1: what a register assigns to an address at one edge of the clock is read for the next.
//
// An environment call or a breakpoint halts the processor. What it cannot execute traps it: an unknown instruction, an
// access that is not aligned or outside of the memories. Both last until reset.
module processor #(
    parameter PROGRAM_BITS = 12,  // of the address of a word
    parameter DATA_BITS = 12,     // of the address of a cell in a bank
    parameter DATA_BASE = 32'h0001_0000
) (
    input  logic        clk,
    input  logic        reset,
    output logic        halted,
    output logic        trapped,
    output logic [31:0] pc
);
  localparam [6:0] LUI = 7'h37, AUIPC = 7'h17, JAL = 7'h6F, JALR = 7'h67, BRANCH = 7'h63, LOAD = 7'h03, STORE = 7'h23,
      IMMEDIATE = 7'h13, REGISTER = 7'h33, FENCE = 7'h0F, SYSTEM = 7'h73;
  localparam [31:0] ENVIRONMENT_CALL = 32'h0000_0073, BREAKPOINT = 32'h0010_0073;

  typedef enum logic [1:0] {FETCH, EXECUTE, LOADED, STOPPED} state_t;
  state_t state;

  // ---- Program memory: the instruction at pc, one cycle later ----

  logic [31:0] instruction;

  marlune_memory #(.ADDRESS_BITS(PROGRAM_BITS), .DATA_BITS(32), .MODE(1)) program_memory (
      .CLK(clk), .r_RE0(1'b1), .r_RA0(pc[PROGRAM_BITS+1:2]), .r_Q0(instruction),
      .w_WE0(1'b0), .w_WA0({PROGRAM_BITS{1'b0}}), .w_D0(32'h0));

  // ---- Fields of the instruction ----

  logic [6:0] opcode;
  logic [2:0] funct3;
  logic [4:0] rd;
  logic [31:0] immediate_i, immediate_s, immediate_b, immediate_u, immediate_j;

  assign opcode = instruction[6:0];
  assign funct3 = instruction[14:12];
  assign rd     = instruction[11:7];
  assign immediate_i = {{20{instruction[31]}}, instruction[31:20]};
  assign immediate_s = {{20{instruction[31]}}, instruction[31:25], instruction[11:7]};
  assign immediate_b = {{20{instruction[31]}}, instruction[7], instruction[30:25], instruction[11:8], 1'b0};
  assign immediate_u = {instruction[31:12], 12'h000};
  assign immediate_j = {{12{instruction[31]}}, instruction[19:12], instruction[20], instruction[30:21], 1'b0};

  // Whether RV32I has the instruction.
  function automatic is_known(input [31:0] i);
    case (i[6:0])
      LUI, AUIPC, JAL, FENCE: is_known = 1;
      JALR:      is_known = i[14:12] == 3'd0;
      BRANCH:    is_known = i[14:13] != 2'd1;
      LOAD:      is_known = i[14:12] < 3'd6 && i[14:12] != 3'd3;
      STORE:     is_known = i[14:12] < 3'd3;
      IMMEDIATE: is_known = i[13:12] != 2'd1 || i[31:25] == 7'h00 || (i[31:25] == 7'h20 && i[14:12] == 3'd5);
      REGISTER:  is_known = i[31:25] == 7'h00 || (i[31:25] == 7'h20 && (i[14:12] == 3'd0 || i[14:12] == 3'd5));
      SYSTEM:    is_known = i == ENVIRONMENT_CALL || i == BREAKPOINT;
      default:   is_known = 0;
    endcase
  endfunction

  // ---- Registers; number 0 is never written ----

  logic [31:0] registers[0:31];
  logic [31:0] rs1, rs2;

  initial for (int i = 0; i < 32; i++) registers[i] = 0;

  assign rs1 = registers[instruction[19:15]];
  assign rs2 = registers[instruction[24:20]];

  // ---- Arithmetic ----

  // `modified` makes a subtraction of the addition and an arithmetic shift of the logical one.
  function automatic [31:0] calculate(input [2:0] operation, input modified, input [31:0] a, input [31:0] b);
    case (operation)
      3'd0: calculate = modified ? a - b : a + b;
      3'd1: calculate = a << b[4:0];
      3'd2: calculate = {31'h0, $signed(a) < $signed(b)};
      3'd3: calculate = {31'h0, a < b};
      3'd4: calculate = a ^ b;
      3'd5:  // not in one expression, in which neither would have a sign
        if (modified) calculate = $signed(a) >>> b[4:0];
        else calculate = a >> b[4:0];
      3'd6: calculate = a | b;
      default: calculate = a & b;
    endcase
  endfunction

  function automatic is_taken(input [2:0] condition, input [31:0] a, input [31:0] b);
    case (condition[2:1])
      2'd0: is_taken = (a == b) ^ condition[0];
      2'd2: is_taken = ($signed(a) < $signed(b)) ^ condition[0];
      default: is_taken = (a < b) ^ condition[0];
    endcase
  endfunction

  logic [31:0] operand, result;
  assign operand = opcode == REGISTER ? rs2 : immediate_i;
  assign result  = calculate(funct3, instruction[30] && (opcode == REGISTER || funct3 == 3'd5), rs1, operand);

  // ---- Where the program goes on ----

  logic [31:0] next_pc;
  assign next_pc = opcode == JAL ? pc + immediate_j
                 : opcode == JALR ? (rs1 + immediate_i) & ~32'h1
                 : opcode == BRANCH && is_taken(funct3, rs1, rs2) ? pc + immediate_b : pc + 4;

  // ---- Data memory ----

  // A bit for each bank that holds something of a byte, a half or a word at an aligned address.
  function automatic [3:0] lanes(input [1:0] size);
    lanes = size == 2'd0 ? 4'b0001 : size == 2'd1 ? 4'b0011 : 4'b1111;
  endfunction

  logic [31:0] address, offset, stored, cells, aligned, loaded;
  logic [ 3:0] enables;
  logic        is_store, fault;

  assign is_store = opcode == STORE;
  assign address  = rs1 + (is_store ? immediate_s : immediate_i);
  assign offset   = address - DATA_BASE;

  // The lowest byte goes to the bank of its address, and comes back from there.
  assign enables = state == EXECUTE && is_store && !fault && !reset ? lanes(funct3[1:0]) << address[1:0] : 4'b0000;
  assign stored  = rs2 << {address[1:0], 3'b000};
  assign aligned = cells >> {address[1:0], 3'b000};
  assign loaded  = funct3[1:0] == 2'd0 ? {{24{aligned[7] && !funct3[2]}}, aligned[7:0]}
                 : funct3[1:0] == 2'd1 ? {{16{aligned[15] && !funct3[2]}}, aligned[15:0]} : aligned;

  for (genvar i = 0; i < 4; i++) begin : banks
    marlune_memory #(.ADDRESS_BITS(DATA_BITS), .DATA_BITS(8), .MODE(1)) bank (
        .CLK(clk), .r_RE0(1'b1), .r_RA0(offset[DATA_BITS+1:2]), .r_Q0(cells[8*i+:8]),
        .w_WE0(enables[i]), .w_WA0(offset[DATA_BITS+1:2]), .w_D0(stored[8*i+:8]));
  end

  // ---- What cannot be executed ----

  logic is_access_bad, is_target_bad;

  assign is_access_bad = (offset >> (DATA_BITS + 2)) != 0 || (funct3[1:0] == 2'd1 && address[0])
      || (funct3[1:0] == 2'd2 && address[1:0] != 0);
  assign is_target_bad = (next_pc >> (PROGRAM_BITS + 2)) != 0 || next_pc[1:0] != 0;
  assign fault = !is_known(instruction) || is_target_bad || ((opcode == LOAD || is_store) && is_access_bad);

  // ---- What an edge of the clock does ----

  logic        is_done;  // with an instruction
  logic        is_writing;
  logic [31:0] written;

  assign is_done    = state == LOADED || (state == EXECUTE && opcode != LOAD && opcode != SYSTEM && !fault);
  assign is_writing = rd != 0 && opcode != BRANCH && opcode != STORE && opcode != FENCE;
  assign written    = opcode == LUI ? immediate_u
                    : opcode == AUIPC ? pc + immediate_u
                    : opcode == JAL || opcode == JALR ? pc + 4
                    : opcode == LOAD ? loaded : result;

  always_ff @(posedge clk)
    if (reset) begin
      state <= FETCH;
      pc    <= 0;
    end else begin
      case (state)
        FETCH:   state <= EXECUTE;
        EXECUTE: state <= fault || opcode == SYSTEM ? STOPPED : opcode == LOAD ? LOADED : FETCH;
        LOADED:  state <= FETCH;
        default: ;
      endcase
      if (is_done) begin
        pc <= next_pc;
        if (is_writing) registers[rd] <= written;
      end
    end

  assign halted  = state == STOPPED && !fault;
  assign trapped = state == STOPPED && fault;
endmodule
