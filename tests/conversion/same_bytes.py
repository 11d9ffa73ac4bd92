#!/usr/bin/env python3
"""Checks that the engine gives the same bytes with every compiler and every optimisation.

Builds `conversion_bytes`, which prints a hash of what each conversion makes of random pictures, by
each compiler at each level of optimisation and with optimisation at link time, and compares the output.
same_bytes.py FOLDER [BUILD...] builds in FOLDER: all builds, or the ones that are named, such as
"g++-O0" or "clang++-lto".
"""

import argparse
import pathlib
import subprocess
import sys

SOURCE = pathlib.Path(__file__).resolve().parents[2]
FLAGS = {"O0": ["-O0"], "O2": ["-O2"], "O3": ["-O3"], "lto": ["-O2"]}
BUILDS = [f"{compiler}-{level}" for compiler in ("g++", "clang++") for level in FLAGS]


def run(command):
    result = subprocess.run(command, capture_output=True, text=True)
    if result.returncode:
        sys.exit(f"{' '.join(map(str, command))}\n{result.stdout}{result.stderr}")
    return result.stdout


def hashes(name, folder):
    """Builds the program as `name` says and returns the lines that it prints."""
    compiler, level = name.split("-")
    build = folder / name
    options = [f"-DCMAKE_CXX_COMPILER={compiler}",
               f"-DCMAKE_CXX_FLAGS_RELEASE={' '.join(FLAGS[level])} -DNDEBUG"]
    if level == "lto":
        options.append("-DCMAKE_INTERPROCEDURAL_OPTIMIZATION=ON")
        if compiler == "clang++":
            options.append("-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld")
    run(["cmake", "--preset", "release", "-S", SOURCE, "-B", build, *options])
    run(["cmake", "--build", build, "--target", "conversion_bytes", "--parallel", "1"])
    return run([build / "tests/conversion/conversion_bytes"]).splitlines()


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("folder", type=pathlib.Path, help="where to build")
    parser.add_argument("builds", nargs="*", metavar="BUILD", help=f"of {', '.join(BUILDS)}")
    arguments = parser.parse_args()
    names = arguments.builds or BUILDS
    if unknown := set(names) - set(BUILDS):
        parser.error(f"no such build: {', '.join(sorted(unknown))}")

    first, faults = None, 0
    for name in names:
        lines = hashes(name, arguments.folder)
        first = first or lines
        differing = [line for line, other in zip(lines, first) if line != other]
        if len(lines) != len(first):
            differing.append(f"{len(lines)} conversions, not {len(first)}")
        print(f"{name}: {len(lines)} conversions, {len(differing)} unlike those of {names[0]}")
        for line in differing:
            print(f"    {line}")
        faults += len(differing)
    return 1 if faults or not first else 0


if __name__ == "__main__":
    sys.exit(main())
