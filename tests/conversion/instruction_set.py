#!/usr/bin/env python3
"""Checks that a library runs on every x86-64 processor of its level: no instruction beyond that.

instruction_set.py LIBRARY checks for the baseline with SSSE3, instruction_set.py LIBRARY v3 (or v4) for the
level x86-64-v3 (or v4) without fused multiply-adds, which change results.

The check uses the encoding of an instruction and not its name, and lists the opcodes that a level has, so an
instruction that nobody has thought of cannot pass. The opcode follows the prefixes, and the extensions after
SSSE3 have places of their own: AVX, FMA and BMI have the VEX, EVEX and XOP prefixes. SSE4, AES, SHA
and others with opcodes of three bytes share the maps 0F 38 and 0F 3A with SSSE3. A few more are older
opcodes with a prefix that earlier processors ignore.
"""

import argparse
import re
import subprocess
import sys

INSTRUCTION = re.compile(r"^\s*[0-9a-f]+:\t((?:[0-9a-f]{2} )+)\s*\t(.*)$")

LEGACY_PREFIXES = {0x26, 0x2E, 0x36, 0x3E, 0x64, 0x65, 0x66, 0x67, 0xF0, 0xF2, 0xF3}
REX_PREFIXES = range(0x40, 0x50)


def opcodes(text):
    """The set of a list such as "00-0B 1C"."""
    bounds = [[int(end, 16) for end in part.split("-")] for part in text.split()]
    return {opcode for ends in bounds for opcode in range(ends[0], ends[-1] + 1)}


# The opcodes of each level by encoding and map: 1 is 0F, 2 is 0F 38 and 3 is 0F 3A.
SSSE3 = {("legacy", 2): opcodes("00-0B 1C-1E"), ("legacy", 3): opcodes("0F")}
V3 = {
    # SSE4.1, SSE4.2 and MOVBE
    ("legacy", 2): opcodes("00-0B 10 14 15 17 1C-1E 20-25 28-2B 30-35 37-41 F0 F1"),
    ("legacy", 3): opcodes("08-0F 14-17 20-22 40-42 60-63"),
    # AVX, AVX2, F16C, BMI1 and BMI2. In map 1, opcodes 41 to 4B and 90 to 99 work on masks of AVX-512.
    ("VEX", 1): opcodes("10-17 28-2F 50-7F C2 C4-C6 D0-FE AE"),
    ("VEX", 2): opcodes("00-0F 13 16 17-1A 1C-1E 20-25 28-2F 30-41 45-47 58-5A 78 79 8C 8E 90-93 F2 F3 "
                        "F5-F7"),
    ("VEX", 3): opcodes("00-02 04-06 08-0F 14-19 1D 20-22 38 39 40-42 46 4A-4C 60-63 F0"),
}
V4 = V3 | {
    # AVX-512F, BW, CD, DQ and VL
    ("VEX", 1): V3["VEX", 1] | opcodes("41 42 44-47 4A 4B 90-93 98 99"),
    ("VEX", 3): V3["VEX", 3] | opcodes("30-33"),
    ("EVEX", 1): opcodes("10-17 28-2F 51-7F C2 C4-C6 D1-FE"),
    ("EVEX", 2): opcodes("00 04 0B-0D 10-16 18-1F 20-2D 30-40 42-47 4C-4F 58-5B 64-66 75-7F 88-8B 8D 90-93 "
                         "A0-A3 C4"),
    ("EVEX", 3): opcodes("00 01 03-05 08-0B 0F 14-1B 1D-23 25-27 38-3B 3E 3F 42 43 50 51 54-57 66 67"),
}
# With a W of 0 these work on bytes and belong to AVX-512VBMI.
WORDS_ALONE = {0x75, 0x7D, 0x8D}
LEVELS = {"ssse3": (SSSE3, set()), "v3": (V3, {"POPCNT", "BMI1", "LZCNT"}),
          "v4": (V4, {"POPCNT", "BMI1", "LZCNT"})}
# Older opcodes of the map 0F, by the prefix that makes them another instruction.
WITH_PREFIX = {
    (0xF3, 0xB8): "POPCNT",
    (0xF3, 0xBC): "BMI1",
    (0xF3, 0xBD): "LZCNT",
    (0x66, 0x78): "SSE4a", (0xF2, 0x78): "SSE4a",
    (0x66, 0x79): "SSE4a", (0xF2, 0x79): "SSE4a",
    (0xF2, 0x2B): "SSE4a", (0xF3, 0x2B): "SSE4a",
}


def beyond(encoding, maps, prefixed):
    """What the instruction belongs to if the level does not have it, or None."""
    prefixes = set()
    at = 0
    while at < len(encoding) and encoding[at] in LEGACY_PREFIXES:
        prefixes.add(encoding[at])
        at += 1
    if at < len(encoding) and encoding[at] in REX_PREFIXES:
        at += 1
    opcode = encoding[at:]
    if not opcode:
        return None  # a prefix that the disassembler shows alone
    if opcode[0] == 0xC5:
        place = "VEX", 1, opcode[2]
    elif opcode[0] == 0xC4:
        place = "VEX", opcode[1] & 0x1F, opcode[3]
    elif opcode[0] == 0x62:
        place = "EVEX", opcode[1] & 7, opcode[4]
        if place[1] == 2 and place[2] in WORDS_ALONE and opcode[2] < 0x80:
            return "AVX-512VBMI"
    elif opcode[0] == 0x8F and opcode[1] & 0x1F >= 8:
        return "XOP"
    elif opcode[0] != 0x0F:
        return None
    elif opcode[1] in (0x38, 0x3A):
        place = "legacy", 2 if opcode[1] == 0x38 else 3, opcode[2]
    elif opcode[1] == 0x0F:
        return "3DNow!"
    else:
        names = {WITH_PREFIX.get((prefix, opcode[1])) for prefix in prefixes} - {None} - prefixed
        return names.pop() if names else None
    encoding_of, map_of, code = place
    if code in maps.get((encoding_of, map_of), ()):
        return None
    return f"{encoding_of}, map {map_of}"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("library")
    parser.add_argument("level", nargs="?", default="ssse3", choices=LEVELS)
    arguments = parser.parse_args()
    command = ["objdump", "--disassemble", "--wide", arguments.library]
    text = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    instructions, faults = 0, 0
    for line in text.splitlines():
        match = INSTRUCTION.match(line)
        if not match:
            continue
        instructions += 1
        if extension := beyond(bytes.fromhex(match.group(1)), *LEVELS[arguments.level]):
            faults += 1
            print(f"{extension}: {line.strip()}")
    print(f"{instructions} instructions, {faults} beyond {arguments.level}")
    return 1 if faults or not instructions else 0


if __name__ == "__main__":
    sys.exit(main())
