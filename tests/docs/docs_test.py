"""Checks the pages that people read:
docs_test.py SOURCE BUILD links|excerpts|tests|commands|slow-commands|reference

Commands are in fenced blocks. The first line of a block says how it is used:

    ```sh               run here, in a copy of the tree whose build/release is this build
    ```sh slow          run in order with all others in a copy that has built nothing yet
    ```sh not-run: WHY  printed with the reason, and not run

There is no display, so programs must make one. `picture.png` and `clip.mov` are there.
"""
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import textwrap

SOURCE, BUILD = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
PAGES = sorted([*SOURCE.glob("*.md"), *SOURCE.glob("docs/**/*.md"), *SOURCE.glob("examples/*.md")])
FENCE = re.compile(r"^ *```(.*)\n((?:.*\n)*?) *```$", re.MULTILINE)
COMMAND = re.compile(r"^    (?:\$ |sudo |script/|cmake |ctest |ffmpeg |git |preview_host|apt)",
                     re.MULTILINE)
faults = []


def fault(page, text):
    faults.append(f"{page.relative_to(SOURCE)}: {text}")


def blocks(page, language):
    """Yields line, rest of the info string, and content of each block of a language in a page."""
    text = page.read_text()
    for match in FENCE.finditer(text):
        name, _, rest = match[1].partition(" ")
        if name == language:
            yield text.count("\n", 0, match.start()) + 1, rest.strip(), textwrap.dedent(match[2])


def anchors(page):
    heads = re.findall(r"^#+ (.*)$", FENCE.sub("", page.read_text()), re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", head.lower()).replace(" ", "-") for head in heads}


def check_links():
    for page in PAGES:
        for target in re.findall(r"\]\(([^)\s]+)\)", FENCE.sub("", page.read_text())):
            if re.match(r"[a-z]+:", target):
                continue
            path, _, anchor = target.partition("#")
            file = (page.parent / path).resolve() if path else page
            if not file.exists():
                fault(page, f"no such file: {target}")
            elif anchor and anchor not in anchors(file):
                fault(page, f"no such heading: {target}")


def check_excerpts():
    """C++ in docs/ is quoted from code that compiles; "// ..." replaces lines that are left out."""
    lines = lambda text: [line.strip() for line in text.splitlines() if line.strip()]
    code = ["\n".join(lines(file.read_text())) + "\n" for folder in ("api", "examples", "host")
            for file in (SOURCE / folder).rglob("*") if file.suffix in (".h", ".cpp", ".c")]
    for page in PAGES:
        if page.parent != SOURCE:
            for line, _, block in blocks(page, "cpp"):
                for part in "\n".join(lines(block)).split("// ..."):
                    if not any(part.strip() in text for text in code):
                        fault(page, f"line {line}: this is not in a source\n{part.strip()}")


def check_tests():
    """What docs/guarantees.md names as a test is one: a name of CTest or of GoogleTest, a label, or an
    expression that selects tests. Some tests exist only if their tools are installed."""
    listing = json.loads(subprocess.run(["ctest", "--show-only=json-v1"], cwd=BUILD, check=True,
                                        stdout=subprocess.PIPE).stdout)["tests"]
    labels = {label for test in listing for each in test["properties"] if each["name"] == "LABELS"
              for label in each["value"]}
    sources = "\n".join(file.read_text() for folder in ("tests", "docs/printed")
                        for file in (SOURCE / folder).rglob("*")
                        if file.suffix in (".cpp", ".cmake") or file.name == "CMakeLists.txt")
    names = {test["name"] for test in listing}
    names |= set(re.findall(r"\bNAME ([\w.]+)", sources))
    names |= {".".join(pair) for pair in re.findall(r"\bTEST(?:_[FP])?\((\w+),\s+(\w+)\)", sources)}
    public = (SOURCE / "api/KestrixPreviewAPI.h").read_text()
    page = SOURCE / "docs/guarantees.md"
    count = 0
    for code in re.findall(r"`([^`\n]+)`", page.read_text()):
        chosen = re.findall(r"-L (\w+)", code) if code.startswith("ctest ") else []
        for label in chosen:
            if label not in labels and not re.search(rf"LABELS?\b[^)]*\b{label}\b", sources):
                fault(page, f"no test has the label {label}")
        expression = re.search(r"ctest .*-R (\S+)", code)
        group = re.fullmatch(r"(conversion|convert|docs|fuzz|preview|Api|Abi)\.[\w.]+\*?", code)
        camel = re.fullmatch(r"[A-Z][A-Za-z0-9]{17,}", code) and code not in public
        if expression or group or camel:
            count += 1
            wanted = expression[1] if expression else re.escape(code).replace(r"\*", "")
            if not any(re.search(wanted, name) for name in names):
                fault(page, f"no such test: {code}")
    if count < 20:
        fault(page, f"only {count} names of tests are found: has the form of the page changed?")


def run(page, block, folder, limit):
    environment = {k: v for k, v in os.environ.items() if k not in ("DISPLAY", "WAYLAND_DISPLAY")}
    environment.update(HOME=str(folder / "home"), LIBGL_ALWAYS_SOFTWARE="1")
    result = subprocess.run(["bash", "-euo", "pipefail", "-c", block], cwd=folder, env=environment,
                            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT, text=True, timeout=limit)
    if result.returncode != 0:
        fault(page, f"{block}exits with status {result.returncode}:\n{result.stdout[-2000:]}")


def check_commands(slow):
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name, "tree")
        tracked = subprocess.run(["git", "-C", SOURCE, "ls-files", "-z", "--cached", "--others",
                                  "--exclude-standard"], check=True, stdout=subprocess.PIPE)
        for file in filter(None, tracked.stdout.decode().split("\0")):
            if (SOURCE / file).exists():
                (folder / file).parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(SOURCE / file, folder / file)
        shutil.copy(SOURCE / "docs/images/test-pattern.png", folder / "picture.png")
        (folder / "home").mkdir()
        if slow:
            subprocess.run(["ffmpeg", "-loglevel", "error", "-f", "lavfi", "-i",
                            "testsrc2=size=1920x1080:rate=25", "-frames:v", "2", folder / "clip.mov"],
                           check=True)
        else:
            (folder / "build").mkdir()
            (folder / "build/release").symlink_to(BUILD)
        count = 0
        for page in PAGES:
            if COMMAND.search(FENCE.sub("", page.read_text())):
                fault(page, "a command in an indented block: use a fenced block of sh")
            for line, mark, block in blocks(page, "sh"):
                where = f"{page.relative_to(SOURCE)}:{line}"
                if mark.startswith("not-run: "):
                    print(f"{where}: not run, {mark[9:]}\n{block}", end="")
                elif mark not in ("", "slow"):
                    fault(page, f"line {line}: unknown mark '{mark}'")
                elif slow or not mark:
                    print(f"{where}: running\n{block}", end="", flush=True)
                    run(page, block, folder, 5400 if slow else 60)
                    count += 1
                else:
                    print(f"{where}: slow; the test docs.slow_commands runs it\n{block}", end="")
        print(f"{count} blocks were run")


def check_reference():
    """Doxygen has no warning, and each link of the HTML has a target."""
    subprocess.run(["doxygen", "docs/Doxyfile"], cwd=SOURCE, check=True)
    folder = SOURCE / "build/doxygen/html"
    texts = {file.name: file.read_text(errors="replace") for file in folder.glob("*.html")}
    ids = {name: set(re.findall(r'(?:id|name)="([^"]+)"', text)) for name, text in texts.items()}
    for name, text in texts.items():
        for target in re.findall(r'(?:href|src)="([^":]+)"', text):
            path, _, anchor = target.partition("#")
            if not (folder / (path or name)).exists():
                fault(folder / name, f"no such file: {target}")
            # Doxygen links to the summary of private nested classes, and does not write it.
            elif anchor not in ("", "nested-classes", *ids.get(path or name, ())):
                fault(folder / name, f"no such place: {target}")


{"links": check_links, "excerpts": check_excerpts, "tests": check_tests,
 "commands": lambda: check_commands(False), "slow-commands": lambda: check_commands(True),
 "reference": check_reference}[sys.argv[3]]()
for text in faults:
    print(text, file=sys.stderr)
sys.exit(bool(faults))
