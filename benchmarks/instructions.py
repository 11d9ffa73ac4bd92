#!/usr/bin/env python3
"""Counts the instructions that each conversion needs for a pixel, and holds them to a budget.

Runs kestrix_instructions under callgrind and takes the difference between two heights of picture, so
that what a call costs once does not count. The budgets are a text file of lines "name
instructions", which --record writes anew. Without it the outcome is non-zero where a conversion needs
over 5 % more than recorded, has no budget, or has one and is gone.

A count is no time, but noise cannot touch it: it tells of every change to a loop.
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

DUMP = re.compile(r"^desc: Trigger: Client Request: (\S+) (\d+)$")
TOTALS = re.compile(r"^(?:summary|totals): (\d+)$")

HEADER = """\
# Instructions a pixel of each conversion, as the release preset of g++ 12 compiles them, at 1920
# pixels a row. Written by script/bench --record; a test holds the conversions to them.
"""


def count(valgrind, program):
    """Instructions a pixel by the name of the conversion."""
    # The copies of the C library are then the same on every processor.
    environment = dict(os.environ, GLIBC_TUNABLES="glibc.cpu.hwcaps=-AVX512F,-AVX2,-AVX,-ERMS,-SSSE3")
    with tempfile.TemporaryDirectory() as folder:
        output = Path(folder) / "callgrind.out"
        command = [valgrind, "--tool=callgrind", "--instr-atstart=no", "--combine-dumps=yes",
                   f"--callgrind-out-file={output}", program]
        done = subprocess.run(command, env=environment, capture_output=True, text=True, check=False)
        if done.returncode != 0:
            sys.exit(f"instructions: {' '.join(command)} failed:\n{done.stderr}")
        text = output.read_text()

    totals, dump = {}, None
    for line in text.splitlines():
        if match := DUMP.match(line):
            dump = match.group(1), int(match.group(2))
        elif dump and (match := TOTALS.match(line)):
            totals.setdefault(dump[0], {})[dump[1]] = int(match.group(1))
            dump = None
    return {name: (heights[max(heights)] - heights[min(heights)])
            / (WIDTH * (max(heights) - min(heights)))
            for name, heights in totals.items()}


def read_budgets(path):
    budgets = {}
    for line in path.read_text().splitlines():
        if line and not line.startswith("#"):
            name, instructions = line.split()
            budgets[name] = float(instructions)
    return budgets


def write_budgets(path, counts):
    lines = [f"{name:36} {instructions:8.3f}\n" for name, instructions in counts.items()]
    path.write_text(HEADER + "".join(lines))


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
    parser.add_argument("budgets", type=Path, help="the file of budgets")
    arguments = parser.parse_args()

    counts = count(arguments.valgrind, arguments.program)
    if not counts:
        sys.exit("instructions: callgrind has counted nothing")
    if arguments.record:
        write_budgets(arguments.budgets, counts)
        print(f"instructions: recorded {len(counts)} conversions in {arguments.budgets}")
        return 0

    budgets = read_budgets(arguments.budgets)
    for name, instructions in counts.items():
        print(f"{name:36} {instructions:8.3f}  of {budgets.get(name, 0):8.3f}")
    for name, instructions in counts.items():
        if ALLOWED * instructions < budgets.get(name, 0):
            print(f"{name} has become better than its budget: record it, so that it stays so")
    found = sorted(faults(counts, budgets))
    for fault in found:
        print(f"FAULT: {fault}")
    print(f"{len(counts)} conversions, {len(found)} faults; "
          "script/bench --record writes the budgets anew")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
