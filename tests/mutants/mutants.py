#!/usr/bin/env python3
"""Puts one-line faults into the sources, one at a time, and sees whether a test falls.

    cmake --preset release && ninja -C build/release
    tests/mutants/mutants.py [--from N] [--count N] [--only PATH] [--tables N] [--list] [--build DIR]

The faults are generated: each rule below is tried on each line of the sources, and of all that come
out those with the lowest hash are taken, so many of each group and the rules in turn. A fault is known by its file, its
line's text and its rule, hence a change of other lines leaves the choice as it is.

A fault goes into a copy of the sources. Of the build, which has to be up to date, only the objects
that include the file are made anew: those of the tests, and those of the library outside the tables
of conversions. Of these, which take long, a few are made anew, one after the other until one is seen
to be at fault: those first that name the stage, and of each only the conversions of its source are
compared with the scalar model. OpenGL needs a display. Prints a line for each, and the sum at the
end; exit status 1 where one survived.
"""

import argparse
import hashlib
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
SEED = "1"

# How many of each group; 200 in all.
GROUPS = [
    ("helpers", 60, ["preview/*.cpp", "preview/*.h"]),
    ("adapters", 40, ["api/*.cpp", "api/*.h", "api/v14_2_1/*", "support/*.cpp"]),
    ("walkers", 30, ["conversion/Transform.h", "conversion/Pipeline.h", "conversion/Kernel.h",
                     "conversion/Convert.h", "conversion/EachVector.h"]),
    ("stages", 70, ["conversion/stages/*.h", "conversion/colour/*.h", "conversion/ByteSwap.h"]),
]

# Name, what is found, what stands there instead: once for each place in a line.
RULES = [
    ("plus to minus", r"(?<=[\w)\]] )\+(?= [\w(*-])", "-"),
    ("minus to plus", r"(?<=[\w)\]] )-(?= [\w(*])", "+"),
    ("times to plus", r"(?<=[\w)\]] )\*(?= [\w(])", "+"),
    ("< to <=", r"(?<= )<(?= )", "<="),
    (">= to >", r"(?<= )>=(?= )", ">"),
    ("== to !=", r"(?<= )==(?= )", "!="),
    ("!= to ==", r"(?<= )!=(?= )", "=="),
    ("&& to ||", r"(?<= )&&(?= )", "||"),
    ("|| to &&", r"(?<= )\|\|(?= )", "&&"),
    ("constant + 1", r"(?<![\w.\"'-])\d+(?![\w.\"'])", lambda m: str(int(m[0]) + 1)),
    ("true to false", r"\btrue\b", "false"),
    ("false to true", r"\bfalse\b", "true"),
    ("negate condition", r"(?<=\bif \()([^;{]+)(?=\)\s*{?$)", lambda m: f"!({m[0]})"),
    ("drop statement", r"^\s+[\w.:>()\[\]-]+(\.|->|::|\w)\w*\(.*\);$", ""),
    ("drop assignment", r"^\s+[\w.\[\]>-]+ [+|-]?= .*;$", ""),
    ("swap arguments", r"(?<=\()(\w+), (\w+)(?=\))", lambda m: f"{m[2]}, {m[1]}"),
    ("success to failure", r"\bS_OK\b", "E_FAIL"),
    ("other failure", r"\bE_OUTOFMEMORY\b", "E_FAIL"),
    ("other unpack", r"\b_mm_unpacklo_", "_mm_unpackhi_"),
    ("other shift", r"\b_mm_srli_", "_mm_slli_"),
    ("or to and", r"\b_mm_or_si128", "_mm_and_si128"),
    ("min to max", r"\b_mm_min_", "_mm_max_"),
    ("add to sub", r"\b_mm_add_", "_mm_sub_"),
]


# What is found in a fault's words, those of the line before behind them, and why no test can see it.
EQUIVALENT = [
    (r"swap arguments: .*(_mm_(madd|add|adds|avg|or|and|xor|min|max|mullo|mulhi)_|std::lcm)",
     "the operation gives the same either way round"),
    (r"Transform.h: false to true: runBlocks<false, 0, PREFETCH / kBlocksInWide>",
     "no stage of a pipeline with wide blocks looks back, so none has a first step"),
    (r"Pipeline.h: < to <=: return P::kBlock < 16 \? std::lcm",
     "the least common multiple of 16 and 16 is 16"),
    (r"RGB12.h: >= to >: .*from >= 9", "byte 12 of what is joined is 0, as is a byte left out"),
    (r"(true to false|false to true): .*(UNPACK, RGBv4_RESCALE|struct MergedForm<)",
     "a form that no list names: the chain gives the same bytes, the budgets of instructions fall"),
    (r"Pipeline.h: >= to >: .*sizeof...\(RUN\) >= 2", "as before, of twins"),
    (r"kLimitsLight<RGB_2020_TO_601NTSC>", "the one curve behind it limits by itself"),
    (r"BitDepth.h: == to !=: .*slli_epi32", "no code leaves its half of a lane"),
    (r"Rescale.h: >= to >: .*kFits = s >= 0", "what does not fit is computed the long way, to the same"),
    (r"Pipeline.h: && to \|\|: !LooksAhead<StageAt<I \+ 1>> && connects",
     "an assertion at compile time, which all pipelines that there are hold"),
    (r"Rescale.h: < to <=: .*kFits = s >= 0", "255 shifted is never 32768"),
    (r"Pipeline.h: swap arguments: .*<BLOCK, RUN - 1>\(done, todo\)",
     "it leaves the list as it is: no merged form, as with those that no list names"),
    (r"true to false: .*kUnpacksBytesToRGBv4 =",
     "no merged form: the chain gives the same bytes, the budgets of instructions fall"),
    (r"PreviewShaders.cpp: < to <=: .*vTexCoord.y < 0.5", "the vertices have 0 or 1 there"),
    (r"GL3Renderer.h: constant \+ 1: GLuint m_indexBuffer = 0;",
     "written before it is read, and deleted only after that"),
    (r"ScreenPreviewLut.cpp: < to <=: .*id < kTables",
     "null is written over null behind the tables, which only the asan preset sees"),
    (r"GLScreenPreview.cpp: other failure: .* after if \(!m_free\)$", "of two slots one is always free"),
]


class Fault:
    def __init__(self, file, number, before, old, new, rule, place):
        self.file, self.number, self.old, self.new, self.rule = file, number, old, new, rule
        self.before = before
        self.key = hashlib.sha256(f"{SEED}|{file}|{old}|{rule}|{place}".encode()).hexdigest()

    def why_equivalent(self):
        text = f"{self} after {self.before.strip()}"
        return next((why for words, why in EQUIVALENT if re.search(words, text)), None)

    def __str__(self):
        return f"{self.file}: {self.rule}: {self.old.strip()}  ->  {self.new.strip() or '(nothing)'}"


def faults_in(file):
    """All faults of a file, comments and preprocessor lines left alone."""
    found = []
    lines = (ROOT / file).read_text().split("\n")
    for number, line in enumerate(lines):
        code = line.split("//")[0].rstrip()
        if not code or code.lstrip().startswith(("#", "*", "static_assert", "using ", "namespace")):
            continue
        if "virtual " in code or "template" in code or '"' in code:
            continue
        for rule, pattern, replacement in RULES:
            for place, match in enumerate(re.finditer(pattern, code)):
                text = replacement if isinstance(replacement, str) else replacement(match)
                new = code[: match.start()] + text + code[match.end() :]
                if new != code:
                    found.append(Fault(file, number, lines[number - 1], line, new, rule, place))
    return found


def chosen():
    """The faults of all groups, one of each group in turn."""
    groups = []
    for _, count, patterns in GROUPS:
        files = sorted({str(p.relative_to(ROOT)) for g in patterns for p in ROOT.glob(g)
                        if p.suffix in (".h", ".cpp")})
        # One of each rule in turn, so that the rules that fit everywhere are no more than others.
        by_rule = {}
        for fault in sorted((f for file in files for f in faults_in(file)), key=lambda f: f.key):
            of_rule = by_rule.setdefault(fault.rule, [])
            of_rule.append((len(of_rule), fault.key, fault))
        ranked = sorted((r for of_rule in by_rule.values() for r in of_rule), key=lambda r: r[:2])
        groups.append([fault for _, _, fault in ranked[:count]])
    # A group's i-th fault comes after the same share of the other groups.
    ranked = [((i + 1) / len(g), n, f) for n, g in enumerate(groups) for i, f in enumerate(g)]
    return [f for _, _, f in sorted(ranked, key=lambda r: r[:2])]


# Which programs can see a fault in what begins so, the quickest first.
PROGRAMS = {
    "conversion/": ["tests/preview/kestrix_preview_lut_test",
                    "tests/conversion/conversion_matrices_test",
                    "tests/conversion/conversion_pipeline_test"],
    "preview/": ["tests/preview/kestrix_preview_test", "tests/preview/kestrix_preview_lut_test",
                 "tests/api/kestrix_oom_test", "tests/api/kestrix_api_test"],
    "support/": ["tests/support_routines/kestrix_support_routines_test"],
    "": ["tests/api/kestrix_api_test", "tests/abi/kestrix_table_walk_gcc",
         "tests/api/kestrix_oom_test", "tests/preview/kestrix_preview_test"],
}
MODEL = "tests/conversion/conversion_entries_test"
# Of its conversions those that no row of the table leads to.
NO_ROWS = "*_Scalar:*ToRGB3:*To709:*ToPAL:*ToNTSC"


class Build:
    """What is known of the build: its objects, what they include, and how programs are linked."""

    def __init__(self, directory, scratch):
        self.directory = directory
        self.scratch = scratch
        self.commands = {}
        for entry in json.loads((directory / "compile_commands.json").read_text()):
            self.commands[entry["output"] if "output" in entry else
                          re.search(r" -o (\S+)", entry["command"])[1]] = entry
        self.includes = {}
        target = None
        deps = subprocess.run(["ninja", "-C", directory, "-t", "deps"], capture_output=True,
                              text=True, check=True).stdout
        for line in deps.splitlines():
            if line.startswith("    "):
                path = (directory / line.strip()).resolve()
                if path.is_relative_to(ROOT):
                    self.includes.setdefault(target, set()).add(str(path.relative_to(ROOT)))
            elif ": #deps" in line:
                target = line.split(":")[0]
        self.links = {}

    def link_command(self, program):
        if program in self.links:
            return self.links[program]
        commands = subprocess.run(["ninja", "-C", self.directory, "-t", "commands", "-s", program],
                                  capture_output=True, text=True, check=True).stdout
        link = [line for line in commands.splitlines() if f" -o {program} " in line][-1]
        self.links[program] = next(p for p in link.split("&&") if f" -o {program} " in p).strip()
        return self.links[program]

    def compile(self, objects):
        """Makes objects anew from the copy of the sources; false where one does not compile."""
        made = {}
        for name in objects:
            entry = self.commands[name]
            out = self.scratch / "objects" / name
            out.parent.mkdir(parents=True, exist_ok=True)
            command = re.sub(rf"(?<=[ I]){re.escape(str(ROOT))}(?=[ /])", str(self.scratch / "tree"),
                             entry["command"].replace(" -Werror", "").replace(" -MD", ""))
            # The fault is in the source, so what is made in half the time will do.
            command = command.replace(" -O3 ", " -O1 ").replace(" -O2 ", " -O1 ")
            command = re.sub(r" -M[TF] \S+", "", command).replace(f"-o {name}", f"-o {out}")
            if subprocess.run(command, shell=True, cwd=self.directory,
                              capture_output=True).returncode:
                return None
            made[name] = str(out)
        return made

    def falls(self, program, made, tests="*"):
        """Whether a program with these objects in the place of its own falls in one of `tests`."""
        link = self.link_command(program)
        library = []
        for name, path in made.items():
            if f" {name} " in link:
                link = link.replace(f" {name} ", f" {path} ")
            else:
                library.append(path)
        # First of all, so that what is inline in others too is taken from these.
        link = re.sub(r" (?=\S+\.o )", f" {' '.join(library)} ", link, count=1)
        out = self.scratch / pathlib.Path(program).name
        link = link.replace(f" -o {program} ", f" -o {out} ")
        done = subprocess.run(link, shell=True, cwd=self.directory, capture_output=True, text=True)
        if done.returncode:
            sys.exit(f"mutants: {program} can't be linked: {done.stderr[-500:]}")
        try:
            return subprocess.run([out, "--gtest_fail_fast", f"--gtest_filter={tests}"], cwd=self.scratch,
                                  capture_output=True, timeout=300).returncode != 0
        except subprocess.TimeoutExpired:
            return True

    def outcome(self, file, names=(), tables=1, programs=None, only=None):
        """What the tests say of the copy of the sources, in which `file` may be at fault, in what
        has these `names`, a level for each step away from it. `programs` other than those of the
        file's group where they are given, and `only` tables of these sources."""
        including = [name for name, files in self.includes.items()
                     if file in files and name in self.commands]
        library = [name for name in including if name.startswith("CMakeFiles/")]
        sources = {name: re.search(r"/conversion/KSXPixelConversion_(\w+)\.cpp", name)
                   for name in library}
        sources = {name: match[1] for name, match in sources.items() if match}

        def rank(name):
            text = (ROOT / f"conversion/KSXPixelConversion_{sources[name]}.cpp").read_text()
            words = set(re.findall(r"\w+", text))
            level = next((n for n, level in enumerate(names) if level & words), len(names))
            uses = len(names[level] & words) if level < len(names) else 0
            # The shorter ones first, as they are made sooner.
            return level, -uses, len(text)

        chosen = sorted(sources, key=rank)[:tables]
        for name in [n for n in sources if sources[n] in only] if only else chosen:
            made = self.compile([name])
            if made is None:
                return "does not compile"
            if self.falls(MODEL, made, f"*_{sources[name]}_To_*:{NO_ROWS}"):
                return f"caught by {MODEL}"

        if programs is None:
            programs = next(p for prefix, p in PROGRAMS.items() if file.startswith(prefix))
        library = self.compile([name for name in library if name not in sources] if programs
                               else [])
        if library is None:
            return "does not compile"
        for program in programs:
            # Tests of the engine make stages themselves; others take what is in the library.
            own = [name for name in including if f" {name} " in self.link_command(program)]
            own = self.compile(own if file.startswith("conversion/") else [])
            if own is None:
                return "does not compile"
            if (own or library) and self.falls(program, library | own):
                return f"caught by {program}"
        return "survived"


def blocks_of(text):
    """The classes and functions of a header, each with the line that it begins in."""
    begins = [n for n, line in enumerate(text.split("\n"))
              if re.match(r"(template|class|struct|inline|constexpr|static|using|KSX_INLINE)\b", line)]
    # What follows a line of a template's parameters alone belongs to it.
    lines = text.split("\n")
    begins = [n for n in begins if n == 0 or not lines[n - 1].startswith("template<")]
    return [(n, "\n".join(lines[n:end])) for n, end in zip(begins, begins[1:] + [len(lines)])]


def names_around(file, number):
    """What the class or function around a line is called and specialised for, then what those are
    called that use it, and so on."""
    def words(text):
        return set(re.findall(r"\b[A-Za-z]\w{5,}", text))

    if not file.startswith(("conversion/stages/", "conversion/colour/")):
        return []  # it is in all of them

    blocks = [block for path in sorted(ROOT.glob("conversion/**/*.h"))
              for block in blocks_of(path.read_text())]
    own = [text for n, text in blocks_of((ROOT / file).read_text()) if n <= number][-1:]
    common = {"template", "typename", "struct", "static", "inline", "constexpr", "public", "Kernel",
              "KSX_INLINE", "__m128i", "unsigned", "concept", "requires", "Pixels", "kVectors"}
    levels, known = [], set(common)
    for _ in range(5):
        heads = {w for text in own for w in words(text.split("{")[0])} - known
        if not heads:
            break
        levels.append(heads)
        known |= heads
        own = [text for _, text in blocks if words(text) & heads]
    return levels


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--from", dest="first", type=int, default=0, help="number to begin with")
    parser.add_argument("--count", type=int, default=200, help="how many faults")
    parser.add_argument("--only", default="", help="only those in files that begin like this")
    parser.add_argument("--tables", type=int, default=3,
                        help="how many tables of conversions are made anew for a stage's fault")
    parser.add_argument("--sources", nargs="*", metavar="SOURCE",
                        help="whose tables, such as 8YUY422, in the place of a choice by name")
    parser.add_argument("--tests", nargs="*", metavar="PROGRAM",
                        help="programs, as paths in the build, in the place of the group's own")
    parser.add_argument("--list", action="store_true", help="print the faults and do nothing")
    parser.add_argument("--build", default=ROOT / "build/release", type=pathlib.Path)
    options = parser.parse_args()

    faults = [(n, f) for n, f in enumerate(chosen()) if f.file.startswith(options.only)]
    faults = [(n, f) for n, f in faults if n >= options.first][: options.count]
    if options.list:
        for number, fault in faults:
            print(f"{number:3} {fault}")
        return 0
    if not (options.build / "compile_commands.json").exists():
        sys.exit(f"mutants: {options.build} is not a build; see --help")

    directory = options.build.resolve()
    with tempfile.TemporaryDirectory(prefix="mutants-", dir=directory) as scratch:
        return run(Build(directory, pathlib.Path(scratch)), faults, options.tables,
                   options.tests, options.sources)


def run(build, faults, *how):
    """Tries the faults, each with its number, in turn; the exit status."""
    tree = build.scratch / "tree"
    for path in subprocess.run(["git", "ls-files"], cwd=ROOT, capture_output=True, text=True,
                               check=True).stdout.splitlines():
        if pathlib.Path(path).suffix in (".h", ".cpp", ".c"):
            (tree / path).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(ROOT / path, tree / path)

    counts = {}
    clean = set()
    for number, fault in faults:
        if why := fault.why_equivalent():
            counts["equivalent"] = counts.get("equivalent", 0) + 1
            print(f"{number:3} equivalent, {why}: {fault}", flush=True)
            continue
        copy = tree / fault.file
        text = (ROOT / fault.file).read_text()
        if copy.parent not in clean:
            # Of what takes long to make, one table will show whether all is in order.
            stages = fault.file.startswith("conversion/")
            sound = build.outcome(fault.file, programs=[] if stages else None)
            if sound != "survived":
                sys.exit(f"mutants: without a fault in {fault.file}: {sound}")
            clean.add(copy.parent)
        lines = text.split("\n")
        lines[fault.number] = fault.new
        copy.write_text("\n".join(lines))
        outcome = build.outcome(fault.file, names_around(fault.file, fault.number), *how)
        copy.write_text(text)
        kind = outcome.split(" by ")[0]
        counts[kind] = counts.get(kind, 0) + 1
        print(f"{number:3} {outcome}: {fault}", flush=True)
    print(", ".join(f"{count} {kind}" for kind, count in sorted(counts.items())))
    return 1 if counts.get("survived") else 0


if __name__ == "__main__":
    sys.exit(main())
