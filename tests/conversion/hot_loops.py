#!/usr/bin/env python3
"""Checks that every conversion runs in straight loops.

Disassembles the objects given (archives as well), finds the loop of each pipeline over the blocks
of a row, and fails where there is none, or where it holds a call, a branch besides its own, or
stores to the stack, which is what a spilled vector is. Loads alone are constants that the compiler
has moved there; they cost what they would elsewhere. A block of pixels is told by its prefetch: what
is looked at are the innermost loops with one.

Where a block of 16 pixels or more ends in bytes that span its vectors, there are moments with more
than 16 vectors alive; one in forty instructions may go to the stack. Stages that change the
gamut may use it more: g++ puts constants of their curves there anew in each round.
"""

import argparse
import re
import subprocess
import sys

LOOP = re.compile(r"^void KSX::PixelConversion::runBlocks<false, 0u, \d+u, (.*?)>\(")
SPILLS_ALLOWED = 0.025
SPILLS_ALLOWED_WITH_CURVES = 0.06

HEADER = re.compile(r"^[0-9a-f]+ <(.*)>:$")
INSTRUCTION = re.compile(r"^\s*([0-9a-f]+):\t(\S+)\s*(.*?)\s*(?:#.*)?$")
RELOCATION = re.compile(r"^\s+[0-9a-f]+: R_X86_64_\w+\t(.*?)(?:[-+]0x[0-9a-f]+)?$")
TARGET = re.compile(r"^([0-9a-f]+) ")
CALLEE = re.compile(r"^[0-9a-f]+ <(.*)>$")


class Instruction:
    def __init__(self, address, name, operands):
        self.address, self.name, self.operands = address, name, operands
        self.symbol = None  # what a relocation makes of the operand

    def is_jump(self):
        return self.name.startswith("j")

    def is_call(self):
        return self.name.startswith("call")

    def callee(self):
        """The function that a call or a jump out of the function leads to."""
        if self.symbol is None and (match := CALLEE.match(self.operands)):
            return match.group(1)
        return self.symbol

    def target(self):
        """The address that a jump within the function leads to."""
        match = TARGET.match(self.operands)
        return int(match.group(1), 16) if match and self.symbol is None else None


def disassemble(path):
    """Yields the name and the instructions of each function."""
    command = ["objdump", "-drC", "--no-show-raw-insn", path]
    text = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    name, body = None, []
    for line in text.splitlines():
        if match := HEADER.match(line):
            if name:
                yield name, body
            name, body = match.group(1), []
        elif match := INSTRUCTION.match(line):
            body.append(Instruction(int(match.group(1), 16), match.group(2), match.group(3)))
        elif (match := RELOCATION.match(line)) and body:
            body[-1].symbol = match.group(1)
    if name:
        yield name, body


def blocks_of(body):
    """Cuts a function into basic blocks: lists of instructions, and each block's successors."""
    index = {instruction.address: i for i, instruction in enumerate(body)}
    starts = {0}
    for i, instruction in enumerate(body):
        if instruction.is_jump() or instruction.name.startswith("ret"):
            starts.add(i + 1)
            if instruction.target() in index:
                starts.add(index[instruction.target()])
    starts = sorted(start for start in starts if start < len(body))
    block_at = {start: number for number, start in enumerate(starts)}
    blocks = [body[a:b] for a, b in zip(starts, starts[1:] + [len(body)])]
    successors = []
    for number, block in enumerate(blocks):
        last, after = block[-1], set()
        if last.is_jump() and last.target() in index:
            after.add(block_at[index[last.target()]])
        if not last.name.startswith(("jmp", "ret", "ud2")) and number + 1 < len(blocks):
            after.add(number + 1)
        successors.append(after)
    return blocks, successors


def natural_loops(successors):
    """The natural loops of a graph of blocks: the numbers of their blocks, by the loop's head."""
    before = {0: set()}  # of the blocks that can be reached, which leaves out padding
    waiting = [0]
    while waiting:
        number = waiting.pop()
        for successor in successors[number]:
            if successor not in before:
                before[successor] = set()
                waiting.append(successor)
            before[successor].add(number)

    dominators = {number: set(before) for number in before}
    dominators[0] = {0}
    changed = True
    while changed:
        changed = False
        for number in sorted(before.keys() - {0}):
            found = set.intersection(*(dominators[b] for b in before[number])) | {number}
            if found != dominators[number]:
                dominators[number], changed = found, True

    loops = {}
    for number in before:
        for head in successors[number] & dominators[number]:
            loop, waiting = loops.setdefault(head, {head}), [number]
            while waiting:
                member = waiting.pop()
                if member not in loop:
                    loop.add(member)
                    waiting.extend(before[member])
    return loops


def hot_loops(body):
    """The innermost loops with a prefetch, each a list of basic blocks."""
    blocks, successors = blocks_of(body)
    prefetches = [any(i.name == "prefetchnta" for i in block) for block in blocks]
    loops = [loop for loop in natural_loops(successors).values()
             if any(prefetches[number] for number in loop)]
    for loop in loops:
        if not any(other < loop for other in loops):
            yield [blocks[number] for number in sorted(loop)]


def faults_of(loop, stack, spills_allowed):
    instructions = [i for block in loop for i in block]
    jumps, spills = 0, []
    for instruction in instructions:
        jumps += instruction.is_jump()
        if instruction.is_call():
            yield f"calls {instruction.callee() or instruction.operands}"
        elif stack.search(instruction.operands):
            spills.append(f"{instruction.name} {instruction.operands}")
    if len(spills) > len(instructions) * spills_allowed:
        yield f"uses the stack: {'; '.join(spills)}"
    if jumps != 1:
        yield f"branches {jumps} times"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("objects", nargs="+", help="object files or archives")
    arguments = parser.parse_args()

    functions = {}
    for path in arguments.objects:
        for name, body in disassemble(path):
            match = LOOP.match(name)
            if match and ".constprop" not in name:  # a copy for one block has no loop
                functions[match.group(1).replace("KSX::PixelConversion::", "")] = body

    failures = 0
    for name, body in sorted(functions.items()):
        framed = any(i.name == "mov" and i.operands == "%rsp,%rbp" for i in body)
        stack = re.compile(r"\(%r(sp|bp)\)$" if framed else r"\(%rsp\)$")
        loops = list(hot_loops(body))
        if len(loops) != 1:
            failures += 1
            print(f"FAULT: {len(loops)} loops in {name}")
        for loop in loops:
            print(f"{sum(map(len, loop)):4} instructions in {name}")
            allowed = SPILLS_ALLOWED_WITH_CURVES if "_CONV_" in name else SPILLS_ALLOWED
            for fault in faults_of(loop, stack, allowed):
                failures += 1
                print(f"     FAULT: {fault}")
    print(f"{len(functions)} loops, {failures} faults")
    return 1 if failures or not functions else 0


if __name__ == "__main__":
    sys.exit(main())
