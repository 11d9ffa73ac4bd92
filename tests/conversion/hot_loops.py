#!/usr/bin/env python3
"""Checks that every conversion runs in straight loops.

Disassembles an object file or archive and checks the loop of each pipeline over the blocks of a row. The
loop is the one with a prefetch. It is a fault if there is no such loop or more than one, if the loop
has a call or a branch besides its own, or if it stores to the stack more often than is allowed. A store
to the stack is a spilled vector. Loads alone read constants that the compiler has moved there; they cost
the same as elsewhere.
"""

import argparse
import re
import subprocess
import sys
from dataclasses import dataclass


@dataclass
class Allowance:
    """The limits for the loops of a compiler."""
    spills: float  # stores to the stack, as a share of the instructions
    spills_with_curves: float  # the same if the loop changes the gamut
    unrolled: int  # instructions of a loop that may have a second one for the blocks left over


# If a block has 16 pixels or more and its last bytes lie across vectors, more than 16 vectors can be
# alive at once. If a loop changes the gamut, g++ also writes constants of the curves to the stack in each
# round. clang uses the stack less. It unrolls the byte swaps and the clamp, which are
# the shortest loops.
ALLOWED = {
    "GNU": Allowance(spills=0.025, spills_with_curves=0.06, unrolled=0),
    "Clang": Allowance(spills=0.01, spills_with_curves=0.04, unrolled=24),
}

# A copy for one block, ".constprop", has no loop. Stages of which one is "Alone" run in several loops, each
# of which is in a function of its own.
WALKER = re.compile(r"^void KSX::PixelConversion::runBlocks<false, 0u, \d+u, (?!.*::Alone<)(.*?)>\("
                    r"(?!.*\.constprop)")
FUNCTION = re.compile(r"^[0-9a-f]+ <(.*)>:$")
INSTRUCTION = re.compile(r"^\s*([0-9a-f]+):\t(\S+)\s*(.*?)\s*(?:#.*)?$")
RELOCATION = re.compile(r"^\s+[0-9a-f]+: R_X86_64_\w+\t(.*?)(?:[-+]0x[0-9a-f]+)?$")


@dataclass
class Instruction:
    address: int
    name: str
    operands: str
    symbol: str = ""  # of the relocation, if there is one

    def is_jump(self):
        return self.name.startswith("j")

    def target(self):
        """The target address of a jump within the function."""
        match = re.match(r"([0-9a-f]+) ", self.operands)
        return int(match[1], 16) if self.is_jump() and match and not self.symbol else None


def walkers(path):
    """The instructions of each pipeline's walker, by the name of the pipeline."""
    text = subprocess.run(["objdump", "-drC", "--no-show-raw-insn", path], check=True,
                          stdout=subprocess.PIPE, text=True).stdout
    found, body = {}, []
    for line in text.splitlines():
        if match := FUNCTION.match(line):
            walker = WALKER.match(match[1])
            body = []
            if walker:
                found[walker[1].replace("KSX::PixelConversion::", "")] = body
        elif match := INSTRUCTION.match(line):
            body.append(Instruction(int(match[1], 16), match[2], match[3]))
        elif (match := RELOCATION.match(line)) and body:
            body[-1].symbol = match[1]
    return found


def hot_loops(body):
    """The loops with a prefetch: from the target of jumps back to the last of these jumps."""
    index = {instruction.address: i for i, instruction in enumerate(body)}
    ends = {}
    for i, instruction in enumerate(body):
        head = index.get(instruction.target(), len(body))
        if head <= i:
            ends[head] = i + 1
    loops = [body[head:end] for head, end in ends.items()]
    return [loop for loop in loops if any(i.name == "prefetchnta" for i in loop)]


def faults_of(name, body, allowed):
    loops = hot_loops(body)
    longest = max(map(len, loops), default=0)
    if len(loops) != 1 and not (len(loops) == 2 and longest <= allowed.unrolled):
        yield f"{len(loops)} loops"
    framed = any(i.name == "mov" and i.operands == "%rsp,%rbp" for i in body)
    stack = re.compile(r"\(%r(sp|bp)[^()]*\)$" if framed else r"\(%rsp[^()]*\)$")
    share = allowed.spills_with_curves if "_CONV_" in name else allowed.spills
    for loop in loops:
        jumps = sum(i.is_jump() for i in loop)
        spills = [f"{i.name} {i.operands}" for i in loop if stack.search(i.operands)]
        yield from (f"calls {i.symbol or i.operands}" for i in loop if i.name.startswith("call"))
        if len(spills) > share * len(loop):
            yield f"stores to the stack: {'; '.join(spills)}"
        if jumps != 1:
            yield f"branches {jumps} times"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--compiler", choices=ALLOWED, default="GNU", help="as CMake calls it")
    parser.add_argument("object", help="object file or archive")
    arguments = parser.parse_args()

    found = walkers(arguments.object)
    failures = 0
    for name, body in sorted(found.items()):
        print(f"{max(map(len, hot_loops(body)), default=0):4} instructions in {name}")
        for fault in faults_of(name, body, ALLOWED[arguments.compiler]):
            failures += 1
            print(f"     FAULT: {fault}")
    print(f"{len(found)} pipelines, {failures} faults")
    return 1 if failures or not found else 0


if __name__ == "__main__":
    sys.exit(main())
