#!/usr/bin/env python3
"""Measures a clock cycle of one 32-bit memory with a read and a write port in Verilator, Icarus Verilog and GHDL, the
test bench's own time subtracted, beside native memories and bare arrays behind direct calls. All runs are interleaved,
so that a busy machine slows all of them; the fastest of each counts.

usage: simulators.py BUILD-FOLDER   (of the release preset)
"""
import os
import pathlib
import subprocess
import sys
import tempfile

ROUNDS = int(os.environ.get("ROUNDS", 15))
SOURCES = pathlib.Path(__file__).resolve().parent
HDL = SOURCES.parent / "hdl"
EXAMPLE = SOURCES.parent / "examples" / "riscv"
NATIVE = EXAMPLE / "native_memory.sv"


def build(*command):
    result = subprocess.run([str(part) for part in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if result.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))}:\n{result.stdout}")


def run(command):
    """Processor time of the user's part, where a memory's costs arise, and the first line of output."""
    process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    output = process.stdout.read()
    _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        sys.exit(f"{' '.join(command)}:\n{output.decode()}")
    return usage.ru_utime, output.decode().splitlines()[0]


def verilator(libraries):
    """The simulator's name, clock cycles of a run, commands by their names, and which of them to compare with. The
    variants with calls have bare arrays behind them in place of the library."""
    cycles = 1_000_000
    own = [HDL / "marlune_dpi.sv", HDL / "marlune_memory.sv"]
    floor = [SOURCES / "simulators" / "floor.cpp"]
    native = ["-DMEMORY=marlune_memory", NATIVE]
    linked = ["-LDFLAGS", f"-L{libraries} -Wl,-rpath,{libraries} -lmarlune_direct -lmarlune_fli_memory"]
    variants = {"test bench": ([], []),
                "native array": (native, []),
                "one call at the edge": (["-DMEMORY=floor_memory", "-DMODE=0", "floor_memory.sv"], floor),
                "calls after the registers": (["-DMEMORY=floor_memory", "-DMODE=1", "floor_memory.sv"], floor)}
    for mode in 0, 1:
        memory = ["-DMEMORY=marlune_memory", f"-DMODE={mode}", *own]
        variants[f"as library, mode {mode}"] = (memory, floor)
        variants[f"library, mode {mode}"] = (memory, linked)
    commands = {}
    for number, (name, (sources, objects)) in enumerate(variants.items()):
        folder = f"verilator{number}"
        build("verilator", "--binary", "--timing", "-Wno-fatal", "--Mdir", folder, "--top-module", "cycle_tb",
              f"-DCYCLES={cycles}", *sources, "cycle_tb.sv", *objects)
        commands[name] = [f"{folder}/Vcycle_tb"]
    return "Verilator", cycles, commands, "calls after the registers"


def icarus(libraries):
    cycles = 100_000
    bridge = [f"-M{libraries}", "-mmarlune_fli"]
    memory = ["-DMEMORY=marlune_memory", HDL / "marlune_memory.v"]
    commands = {}
    for name, sources, modules in (("test bench", [], []),
                                   ("native array", ["-DMEMORY=marlune_memory", NATIVE], []),
                                   ("library, mode 0", ["-DMODE=0", *memory], bridge),
                                   ("library, mode 1", ["-DMODE=1", *memory], bridge)):
        program = f"{len(commands)}.vvp"
        build("iverilog", "-g2012", "-s", "cycle_tb", f"-DCYCLES={cycles}", "-o", program, *sources,
              "cycle_tb.sv")
        commands[name] = ["vvp", *modules, program]
    return "Icarus Verilog", cycles, commands, "native array"


def ghdl(libraries):
    cycles = 50_000
    os.environ["LD_LIBRARY_PATH"] = str(libraries)
    build("ghdl", "-a", "--std=08", "--work=foreign_memories", HDL / "marlune_fli.vhd", HDL / "marlune_memory.vhd")
    build("ghdl", "-a", "--std=08", *(HDL / "ghdl" / f"marlune_{name}.vhd" for name in ("direct", "memory")),
          "cycle_tb.vhd")
    build("ghdl", "-e", "--std=08", "cycle_tb")
    commands = {}
    for name, kind, mode in (("test bench", "none", 0), ("native array", "signal", 0), ("variable array", "variable", 0),
                             ("library, mode 0", "direct", 0), ("library, mode 1", "direct", 1),
                             ("foreign architecture, mode 0", "foreign", 0)):
        bridge = [f"--vpi={libraries}/libmarlune_fli_vpi.so"] if kind == "foreign" else []
        commands[name] = ["ghdl", "-r", "--std=08", "cycle_tb", f"-gKIND={kind}", f"-gMODE={mode}",
                          f"-gCYCLES={cycles}", *bridge]
    return "GHDL", cycles, commands, "native array"


def processor(libraries):
    """The whole design of examples/riscv, with its memories in the library, in arrays of the language, and in bare arrays
    behind the library's own calls."""
    for simulator in "verilator", "icarus":
        build(EXAMPLE / "run.sh", libraries, simulator, "--into", "library")
        build(EXAMPLE / "run.sh", libraries, simulator, "--into", "native", "--native")
    build("verilator", "--binary", "--timing", "-Wno-fatal", "--Mdir", "floor", "--top-module", "processor_tb",
          HDL / "marlune_dpi.sv", HDL / "marlune_memory.sv", EXAMPLE / "processor.sv", EXAMPLE / "processor_tb.sv",
          "floor.cpp")
    os.environ["LD_LIBRARY_PATH"] = str(libraries)
    plain = ["+program=native/program.mem", "+data=native/data.mem"]
    images = ["+program=library/program.vexon", "+data=library/data.vexon"]
    bridge = [f"-M{libraries}", "-mmarlune_fli"]
    runs = {"verilator": "+runs=40", "icarus": "+runs=2"}
    return {("Verilator", "native arrays"): ["native/processor_tb", runs["verilator"], *plain],
            ("Verilator", "bare arrays"): ["floor/Vprocessor_tb", runs["verilator"], *plain],
            ("Verilator", "library"): ["library/processor_tb", runs["verilator"], *images],
            ("Icarus Verilog", "native arrays"): ["vvp", "native/processor_tb.vvp", runs["icarus"], *plain],
            ("Icarus Verilog", "library"): ["vvp", *bridge, "library/processor_tb.vvp", runs["icarus"], *images]}


def measure(commands):
    """The best time of each command, and what it printed, by its key."""
    best, lines = {}, {}
    for _ in range(ROUNDS):
        for key, command in commands.items():
            seconds, lines[key] = run(command)
            best[key] = min(best.get(key, seconds), seconds)
    return best, lines


def main():
    libraries = pathlib.Path(sys.argv[1]).resolve()
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        for source in (SOURCES / "simulators").iterdir():  # Verilator takes no blanks in paths
            os.symlink(source, source.name)
        simulators = [make(libraries) for make in (verilator, icarus, ghdl)]
        designs = processor(libraries)
        best, lines = measure({(simulator, name): command for simulator, _, commands, _ in simulators
                               for name, command in commands.items()})
        for simulator, cycles, commands, reference in simulators:
            own = best[simulator, "test bench"]
            print(f"\n{simulator}: nanoseconds a cycle, less the {own / cycles * 1e9:.1f} of the test bench")
            if lines[simulator, "library, mode 1"] != lines[simulator, "native array"]:
                sys.exit(f"{simulator}: the library reads {lines[simulator, 'library, mode 1']}")
            for name in list(commands)[1:]:
                print(f"  {name:45} {(best[simulator, name] - own) / cycles * 1e9:8.1f}", end="")
                ratio = (best[simulator, name] - own) / (best[simulator, reference] - own)
                print(f"  {ratio:6.2f} times {reference}" if name.startswith("library,") else "")

        print("\nA whole processor with five memories (examples/riscv): seconds, and times those of native arrays")
        best, _ = measure(designs)
        for simulator, name in designs:
            seconds = best[simulator, name]
            print(f"  {simulator:15} {name:30} {seconds:6.3f} {seconds / best[simulator, 'native arrays']:6.2f}")


main()
