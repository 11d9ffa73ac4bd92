#!/usr/bin/env python3
"""Checks that a library runs on every x86-64 processor with SSSE3: no instruction beyond that.

The check uses the encoding of an instruction and not its name, so an instruction that nobody has thought
of cannot pass. The opcode follows the prefixes, and the extensions after SSSE3 have places of their own:
AVX, FMA and BMI have the VEX, EVEX and XOP prefixes. SSE4, AES, SHA and others with opcodes of three
bytes share the maps 0F 38 and 0F 3A with SSSE3, which has a few opcodes there. A few more are older
opcodes with a prefix that earlier processors ignore.
"""

import re
import subprocess
import sys

INSTRUCTION = re.compile(r"^\s*[0-9a-f]+:\t((?:[0-9a-f]{2} )+)\s*\t(.*)$")

LEGACY_PREFIXES = {0x26, 0x2E, 0x36, 0x3E, 0x64, 0x65, 0x66, 0x67, 0xF0, 0xF2, 0xF3}
REX_PREFIXES = range(0x40, 0x50)
SSSE3_OF_MAP = {
    0x38: {*range(0x00, 0x0C), 0x1C, 0x1D, 0x1E},
    0x3A: {0x0F},
}
# Older opcodes of the map 0F, by the prefix that makes them another instruction.
WITH_PREFIX = {
    (0xF3, 0xB8): "POPCNT",
    (0xF3, 0xBC): "BMI1",
    (0xF3, 0xBD): "LZCNT",
    (0x66, 0x78): "SSE4a", (0xF2, 0x78): "SSE4a",
    (0x66, 0x79): "SSE4a", (0xF2, 0x79): "SSE4a",
    (0xF2, 0x2B): "SSE4a", (0xF3, 0x2B): "SSE4a",
}


def beyond(encoding):
    """The extension after SSSE3 that the instruction belongs to, or None."""
    prefixes = set()
    at = 0
    while at < len(encoding) and encoding[at] in LEGACY_PREFIXES:
        prefixes.add(encoding[at])
        at += 1
    if at < len(encoding) and encoding[at] in REX_PREFIXES:
        at += 1
    opcode = encoding[at : at + 3]
    if not opcode:
        return None  # a prefix that the disassembler shows alone
    if opcode[0] in (0xC4, 0xC5):
        return "VEX"
    if opcode[0] == 0x62:
        return "EVEX"
    if opcode[0] == 0x8F and opcode[1] & 0x1F >= 8:
        return "XOP"
    if opcode[0] != 0x0F:
        return None
    if opcode[1] in SSSE3_OF_MAP:
        return None if opcode[2] in SSSE3_OF_MAP[opcode[1]] else "SSE4 or later"
    if opcode[1] == 0x0F:
        return "3DNow!"
    for prefix in prefixes:
        if (prefix, opcode[1]) in WITH_PREFIX:
            return WITH_PREFIX[prefix, opcode[1]]
    return None


def main():
    if len(sys.argv) != 2:
        sys.exit(f"usage: {sys.argv[0]} LIBRARY")
    command = ["objdump", "--disassemble", "--wide", sys.argv[1]]
    text = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    instructions, faults = 0, 0
    for line in text.splitlines():
        match = INSTRUCTION.match(line)
        if not match:
            continue
        instructions += 1
        if extension := beyond(bytes.fromhex(match.group(1))):
            faults += 1
            print(f"{extension}: {line.strip()}")
    print(f"{instructions} instructions, {faults} beyond SSSE3")
    return 1 if faults or not instructions else 0


if __name__ == "__main__":
    sys.exit(main())
