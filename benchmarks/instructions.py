#!/usr/bin/env python3
"""Counts the instructions that each conversion needs for a pixel, and holds them to a budget.

Runs kestrix_instructions under callgrind and takes the difference between two heights of picture, so
that what a call costs once does not count. Budgets are a text file of lines "name instructions" for
each compiler, such as instructions/g++-12.txt. The exit status is 1 if a conversion needs over 5 % more than
its budget, has none, or is gone, and 77 if there is no file for the compiler: the code of two versions
of a compiler is up to 64 % apart in single conversions, so the budgets of another one say nothing.
"""

import argparse
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

ALLOWED = 1.05
WIDTH = 1920

DUMP = re.compile(r"^desc: Trigger: Client Request: (\S+) (\d+)\n(?:(?!desc:).*\n)*?"
                  r"(?:summary|totals): (\d+)$", re.MULTILINE)

HEADER = """\
# Instructions a pixel of each conversion at 1920 pixels a row, as {compiler} compiles them in Release.
# Written by script/bench --record; the test benchmarks.instructions holds the conversions to them.
"""


def count(valgrind, program):
    """Instructions a pixel by the name of the conversion."""
    # Every processor uses the same copy functions of the C library.
    environment = dict(os.environ, GLIBC_TUNABLES="glibc.cpu.hwcaps=-AVX512F,-AVX2,-AVX,-ERMS,-SSSE3")
    with tempfile.TemporaryDirectory() as folder:
        output = Path(folder) / "callgrind.out"
        command = [valgrind, "--tool=callgrind", "--instr-atstart=no", "--combine-dumps=yes",
                   f"--callgrind-out-file={output}", program]
        done = subprocess.run(command, env=environment, capture_output=True, text=True, check=False)
        if done.returncode != 0:
            sys.exit(f"instructions: {' '.join(command)} failed:\n{done.stderr}")
        dumps = DUMP.findall(output.read_text())
    totals = {}
    for name, height, total in dumps:
        totals.setdefault(name, {})[int(height)] = int(total)
    return {name: (heights[max(heights)] - heights[min(heights)])
            / (WIDTH * (max(heights) - min(heights)))
            for name, heights in totals.items()}


def read_budgets(path):
    lines = [line.split() for line in path.read_text().splitlines() if not line.startswith("#")]
    return {name: float(instructions) for name, instructions in lines}


def faults(counts, budgets):
    for name, instructions in counts.items():
        if name not in budgets:
            yield f"{name} needs {instructions:.3f} instructions a pixel and has no budget"
        elif instructions > ALLOWED * budgets[name]:
            yield (f"{name} needs {instructions:.3f} instructions a pixel, "
                   f"{instructions / budgets[name] - 1:.0%} over its budget of {budgets[name]:.3f}")
    for name in budgets.keys() - counts.keys():
        yield f"{name} has a budget, but there is no such conversion"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--valgrind", default="valgrind", help="the program of that name")
    parser.add_argument("--record", action="store_true", help="write the budgets anew")
    parser.add_argument("program", help="kestrix_instructions")
    parser.add_argument("budgets", type=Path, help="file of budgets, named after the compiler")
    arguments = parser.parse_args()
    path = arguments.budgets
    if not arguments.record and not path.exists():
        print(f"instructions: skipped, {path.stem} has no budgets; script/bench --record writes them")
        return 77

    counts = count(arguments.valgrind, arguments.program)
    if not counts:
        sys.exit("instructions: callgrind has counted nothing")
    if arguments.record:
        lines = [f"{name:36} {instructions:8.3f}\n" for name, instructions in counts.items()]
        path.write_text(HEADER.format(compiler=path.stem) + "".join(lines))
        print(f"instructions: recorded {len(counts)} conversions in {path}")
        return 0

    budgets = read_budgets(path)
    for name, instructions in counts.items():
        budget = budgets.get(name, 0)
        better = "  better: record it, so that it stays so" if ALLOWED * instructions < budget else ""
        print(f"{name:36} {instructions:8.3f}  of {budget:8.3f}{better}")
    found = sorted(faults(counts, budgets))
    for fault in found:
        print(f"FAULT: {fault}")
    print(f"{len(counts)} conversions, {len(found)} faults; "
          "script/bench --record writes the budgets anew")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
