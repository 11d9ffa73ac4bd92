#!/usr/bin/env python3
"""Checks that a library runs on every x86-64 processor with SSSE3: no instruction beyond that."""

import re
import subprocess
import sys

INSTRUCTION = re.compile(r"^\s*[0-9a-f]+:\t(\S+)")

# Names in the AT&T syntax, with the suffix for the operand's size where there is one.
BEYOND = re.compile(
    r"""^(
    v(?!err$|erw$|mcall$|mmcall$)\w+                              # AVX and everything after it
    | blend\w+ | pblend\w+ | dpp[ds] | mpsadbw | phminposuw       # SSE4.1
    | round[sp][sd] | insertps | extractps | pinsr[bdq] | pextr[bdq]
    | pm(in|ax)(sb|sd|uw|ud) | pmul(dq|ld) | packusdw
    | pmov[sz]x\w+ | ptest | pcmpeqq | movntdqa
    | pcmpgtq | pcmp[ei]str[im] | crc32[bwlq]?                    # SSE4.2
    | extrq | insertq | movnts[sd]                                # SSE4a
    | popcnt[wlq]? | lzcnt[wlq]? | movbe[wlq]?
    | aes\w+ | pclmul\w+ | sha1\w+ | sha256\w+ | gf2p8\w+
    | andn[lq]? | bextr[lq]? | bls(r|i|msk)[lq]? | bzhi[lq]? | mulx[lq]?
    | pdep[lq]? | pext[lq]? | rorx[lq]? | sarx[lq]? | shlx[lq]? | shrx[lq]?
    | adcx[lq]? | adox[lq]? | k(mov|and|or|xor|not|test|unpck|shift|add)\w+
    )$""",
    re.VERBOSE,
)


def main():
    if len(sys.argv) != 2:
        sys.exit(f"usage: {sys.argv[0]} LIBRARY")
    command = ["objdump", "-d", "--no-show-raw-insn", sys.argv[1]]
    text = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    instructions, faults = 0, 0
    for line in text.splitlines():
        match = INSTRUCTION.match(line)
        if not match:
            continue
        instructions += 1
        if BEYOND.match(match.group(1)):
            faults += 1
            print(line)
    print(f"{instructions} instructions, {faults} beyond SSSE3")
    return 1 if faults or not instructions else 0


if __name__ == "__main__":
    sys.exit(main())
