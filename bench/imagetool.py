#!/usr/bin/env python3
"""Converts and dumps 100 MiB with marlune-image, beside objcopy and srec_cat on the same files, all in one run.

usage: imagetool.py BUILD-FOLDER   (of the release preset; needs binutils and srecord)
"""
import os
import pathlib
import subprocess
import sys
import tempfile

SIZE = 100 << 20  # bytes of contents
REPETITIONS = 5


def run(command):
    """Seconds of the processor, which a busy machine changes least, and the peak of resident bytes."""
    pathlib.Path("out").unlink(missing_ok=True)  # giving up the old file is not what is measured
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    message = process.stderr.read()
    _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        sys.exit(f"{' '.join(command)}: {message.decode()}")
    return usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024


def compare(rows):
    """Runs all commands in turns, so that a busy machine slows all of them; the fastest of each counts."""
    best = {}
    for _ in range(REPETITIONS):
        for row in rows:
            for command in row[1:3]:
                if command is not None:
                    seconds, memory = run(command)
                    old = best.get(tuple(command), (seconds, memory))
                    best[tuple(command)] = (min(old[0], seconds), max(old[1], memory))
    print(f"{'':56} {'seconds':>8} {'ratio':>6} {'aim':>5} {'memory/contents':>16} {'aim':>5}")
    for what, command, reference, time_aim, memory_aim in rows:
        seconds, memory = best[tuple(command)]
        ratio = f"{seconds / best[tuple(reference)][0]:.2f}" if reference else ""
        print(f"{what:56} {seconds:8.2f} {ratio:>6} {time_aim:>5} {memory / SIZE:16.2f} {memory_aim:5.1f}")


def main():
    tool = str(pathlib.Path(sys.argv[1], "marlune-image").resolve())
    # In memory where possible: what a disk does is not what is measured.
    place = "/dev/shm" if os.path.isdir("/dev/shm") else None
    with tempfile.TemporaryDirectory(dir=place) as folder:
        os.chdir(folder)
        pathlib.Path("raw").write_bytes(os.urandom(SIZE))
        pathlib.Path("program.s").write_text('.section .text, "ax"\n.globl _start\n_start: .incbin "raw"\n')
        for command in ("as program.s -o program.o", "ld -n -Ttext=0x1000 program.o -o elf",
                        "objcopy -I binary -O ihex raw hex", f"{tool} convert elf text --space ram --width 8"):
            subprocess.run(command.split(), check=True)
        os.remove("program.o")
        memory = ["--space", "ram", "--width", "8"]
        convert = [tool, "convert"]
        dump = memory + ["--size", str(SIZE + 0x1000), "-o", "out"]
        rows = [
            ("convert, ELF / objcopy -O ihex", [*convert, "elf", "out", *memory],
             "objcopy -O ihex elf out".split(), "3.0", 2.5),
            ("convert, raw bytes / objcopy -O ihex", [*convert, "raw", "out", *memory, "--from", "binary"],
             "objcopy -I binary -O ihex raw out".split(), "3.0", 2.5),
            ("convert, Intel HEX / srec_cat", [*convert, "hex", "out", *memory],
             "srec_cat hex -intel -o out -binary".split(), "2.0", 2.5),
        ]
        for source in ("text", "elf"):
            for form in ("hex", "bin", "readmemh", "ihex", "srec"):
                rows.append((f"dump, {source} to {form}", [tool, "dump", source, *dump, "--format", form], None, "1.5 s",
                             1.5))
        compare(rows)


if __name__ == "__main__":
    main()
