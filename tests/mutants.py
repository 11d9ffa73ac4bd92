#!/usr/bin/env python3
"""Puts one-line faults into sources, one at a time, and lists those that no test sees.

    tests/mutants.py [--seed N] [--count N] [--tests REGEX] FILE...

Each fault changes one operator, constant or statement in a line of FILE that is drawn at random. It
goes into a copy of the tree, which is built with the preset "release" and tested by CTest. A fault in a
header of the engine compiles the engine, which takes minutes. OpenGL needs a display. Exit status 1 if
a fault survived.
"""
import argparse, pathlib, random, re, shutil, subprocess, sys, tempfile

ROOT = pathlib.Path(__file__).resolve().parents[1]
RULES = [
    (r"(?<=[\w)\]] )\+(?= [\w(*-])", "-"), (r"(?<=[\w)\]] )-(?= [\w(*])", "+"),
    (r"(?<= )<(?= )", "<="), (r"(?<= )>=(?= )", ">"), (r"(?<= )==(?= )", "!="),
    (r"(?<= )!=(?= )", "=="), (r"(?<= )&&(?= )", "||"), (r"(?<= )\|\|(?= )", "&&"),
    (r"\btrue\b", "false"), (r"\bfalse\b", "true"), (r"\bS_OK\b", "E_FAIL"),
    (r"(?<![\w.\"'-])\d+(?![\w.\"'])", lambda match: str(int(match[0]) + 1)),
    (r"(?<=\bif \()([^;{]+)(?=\)\s*{?$)", r"!(\1)"),
    (r"^\s+[\w.:>()\[\]-]+(\.|->|::|\w)\w*\(.*\);$", ""),  # a call
    (r"^\s+[\w.\[\]>-]+ [+|-]?= .*;$", ""),  # an assignment
    (r"_mm_unpacklo_", "_mm_unpackhi_"), (r"_mm_srli_", "_mm_slli_"), (r"_mm_or_", "_mm_and_"),
    (r"_mm_min_", "_mm_max_"), (r"_mm_add_", "_mm_sub_"),
]


def faults_of(file):
    """The number of each line that a rule fits, and what it becomes."""
    for number, line in enumerate((ROOT / file).read_text().split("\n")):
        code = line.split("//")[0].rstrip()
        if code.lstrip().startswith(("#", "static_assert", "using ", "template")):
            continue
        for pattern, replacement in RULES:
            for match in re.finditer(pattern, code):
                new = replacement(match) if callable(replacement) else match.expand(replacement)
                yield file, number, code[:match.start()] + new + code[match.end():]


def run(tree, *command):
    return subprocess.run(command, cwd=tree, capture_output=True, text=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--count", type=int, default=20)
    parser.add_argument("--tests", default=".", metavar="REGEX")
    parser.add_argument("files", nargs="+", metavar="FILE", help="relative to the root")
    options = parser.parse_args()
    (ROOT / "build").mkdir(exist_ok=True)
    with tempfile.TemporaryDirectory(prefix="mutants-", dir=ROOT / "build") as name:
        tree = pathlib.Path(name)
        for path in run(ROOT, "git", "ls-files").stdout.splitlines():
            (tree / path).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(ROOT / path, tree / path)

        def outcome():
            if run(tree, "cmake", "--build", "--preset", "release").returncode:
                return "does not compile"
            tests = run(tree, "ctest", "--preset", "release", "--stop-on-failure", "-R", options.tests)
            fallen = re.search(r"\d+ - (\S+) \(", tests.stdout)
            return f"caught by {fallen[1]}" if fallen else "survived"

        run(tree, "cmake", "--preset", "release", "-DKESTRIX_WERROR=OFF")
        if (sound := outcome()) != "survived":
            sys.exit(f"mutants: without a fault: {sound}")
        faults = [fault for file in options.files for fault in faults_of(file)]
        random.Random(options.seed).shuffle(faults)
        survivors = 0
        for file, number, new in faults[:options.count]:
            text = (tree / file).read_text()
            lines = text.split("\n")
            old, lines[number] = lines[number].strip(), new
            (tree / file).write_text("\n".join(lines))
            result = outcome()
            (tree / file).write_text(text)
            survivors += result == "survived"
            print(f"{result}: {file}:{number + 1}: {old}  ->  {new.strip()}", flush=True)
        return 1 if survivors else 0


sys.exit(main())
