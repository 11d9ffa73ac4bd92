#!/usr/bin/env python3
"""Prints the measured part of docs/performance.md from the figures in benchmarks/figures/.

--write puts it into the page and draws the chart; --check compares it with the page.
"""

import argparse
import csv
import difflib
import subprocess
import sys
import textwrap
from pathlib import Path
from statistics import median

ROOT = Path(__file__).resolve().parent.parent
FIGURES = ROOT / "benchmarks/figures"
PAGE = ROOT / "docs/performance.md"
CHART = ROOT / "docs/images/performance.svg"
BEGIN, END = "<!-- measured: begin -->\n", "<!-- measured: end -->\n"

SIZES = ("1920x1080", "3840x2160")
# The conversions that hosts use most.
CHIEF = [
    "2vuy/YUY2", "YUY2/2vuy", "2vuy/v210", "v210/2vuy", "Ay10/v210",
    "2vuy:709/BGRA:709", "v210:709/BGRA:709", "Ay10:709/BGRA:709",
    "BGRA:709/2vuy:709", "BGRA:709/v210:709",
    "BGRA/ARGB", "BGRA/RGBA", "RGBA/RGB3", "RGB3/RGBA",
    "BGRA/r210", "BGRA/R210", "BGRA/R10L", "BGRA/R12L",
    "r210/BGRA", "R210/BGRA", "R10L/BGRA", "R12L/BGRA", "b64a/BGRA",
    "BGRA:2020/BGRA:709",
]
YUV = {"2vuy", "YUY2", "v210", "v212", "v216", "ay10", "Ay10"}
CLASSES = ["YUV to YUV", "RGB to RGB", "YUV to RGB", "RGB to YUV", "to another standard",
           "to another standard, from A04l and A04L"]


def class_of(conversion):
    """The one of CLASSES that contains a conversion, such as "2vuy:709/BGRA:709"."""
    (source, before), (target, after) = (end.partition(":")[::2] for end in conversion.split("/"))
    if before != after:
        return CLASSES[5 if source in ("A04l", "A04L") else 4]
    return f"{'YUV' if source in YUV else 'RGB'} to {'YUV' if target in YUV else 'RGB'}"


def read(name):
    with open(FIGURES / f"{name}.csv", newline="") as figures:
        return list(csv.DictReader(figures))


def table(header, lines):
    """A table in Markdown with columns of equal width; those after the first are aligned right."""
    widths = [max(len(line[i]) for line in [header, *lines]) for i in range(len(header))]

    def row(cells):
        first, *others = (c.rjust(w) if i else c.ljust(w) for i, (c, w) in enumerate(zip(cells, widths)))
        return "| " + " | ".join([first, *others]) + " |"

    rule = "|".join("-" * (w + 1) + (":" if i else "-") for i, w in enumerate(widths))
    return "\n".join([row(header), f"|{rule}|", *map(row, lines)])


def percent(share):
    return f"{float(share):.0%}"


def spread(records, column, form):
    """The median of a column, and its lowest and highest value."""
    values = [float(record[column]) for record in records if record[column]]
    return f"{form(median(values))} ({form(min(values))} to {form(max(values))})"


def class_table(own):
    lines = []
    for name in CLASSES:
        of_class = [record for record in own if class_of(record["conversion"]) == name]
        lines.append([name, str(len(of_class)), spread(of_class, "instructions", "{:.1f}".format),
                      spread(of_class, "cold_ns", "{:.2f}".format),
                      spread(of_class, "hot_of_memcpy", percent),
                      spread(of_class, "cold_of_memcpy", percent)])
    return table(["class", "rows", "instructions per pixel", "ns per pixel, cold", "of memcpy, hot",
                  "of memcpy, cold"], lines)


def chief_table(own, peers):
    lines = []
    for record in sorted((r for r in own if r["conversion"] in CHIEF),
                         key=lambda r: CHIEF.index(r["conversion"])):
        beside = [p for p in peers if p["conversion"] == record["conversion"]]
        fastest = min(beside, key=lambda p: float(p["cold_free"] or "inf"), default=None)
        cells = ([fastest["library"], fastest["cold_ssse3"], fastest["cold_free"], fastest["differs"]]
                 if fastest else [""] * 4)
        lines.append([f"`{record['conversion']}`", record["hot_ns"], record["cold_ns"],
                      percent(record["cold_of_memcpy"]), *cells])
    return table(["conversion", "ns hot", "ns cold", "of memcpy", "fastest peer", "with SSSE3", "no limit",
                  "what the peer does differently"], lines)


def peer_table(peers):
    lines = []
    for library in sorted({p["library"] for p in peers}):
        beside = [p for p in peers if p["library"] == library]
        faster = [f"`{p['conversion']}`" for p in beside if float(p["cold_free"] or "inf") < 0.95]
        lines.append([library, str(len(beside)), spread(beside, "cold_ssse3", "{:.1f}".format),
                      spread(beside, "cold_free", "{:.1f}".format), ", ".join(faster) or "none"])
    return table(["library", "rows", "with SSSE3", "no limit", "conversions over 5 % faster than ours"], lines)


def helper_table(helpers):
    """A table with a line for each call and size, and a column for each format."""
    calls, others = {}, []
    for record in helpers:
        call, *rest = record["what"].split("/")
        if rest:
            calls.setdefault((call, rest[1]), {})[rest[0]] = f"{float(record['ms']):.1f}"
        else:
            others.append(f"{call}: {float(record['ms']):.1f} ms")
    formats = sorted(next(iter(calls.values())))
    lines = [[f"{call}, {size}", *(cells[f] for f in formats)] for (call, size), cells in calls.items()]
    return "; ".join(others)+ ".\n\n" + table(["ms per call", *formats], lines)


def text():
    size = SIZES[0]
    own = [record for record in read("conversions") if record["size"] == size]
    peers = [record for record in read("peers") if record["size"] == size]
    machine = "; ".join(f"{record['what']}: {record['value']}" for record in read("machine")) + "."
    sections = [textwrap.fill(machine[0].upper() + machine[1:], 105),
                f"### All conversions by class, {size}", class_table(own),
                f"### What hosts use most, {size}", chief_table(own, peers),
                f"### Other libraries, {size}, cold: their time divided by ours", peer_table(peers),
                "### The helpers", helper_table(read("helpers"))]
    return "\n" + "\n\n".join(sections) + "\n\n"


def chart():
    """Draws the time of other libraries divided by ours: cold, with all instructions of the processor."""
    size = SIZES[0]
    others = [(p["conversion"], p["library"], p["cold_free"]) for p in read("peers") if p["size"] == size]
    others += [(r["conversion"], "memcpy", r["cold_of_memcpy"]) for r in read("conversions")
               if r["size"] == size]
    points = [f'{CHIEF.index(conversion)} "{conversion}" "{library}" {ratio}'
              for conversion, library, ratio in others if ratio and conversion in CHIEF]
    script = "\n".join([f"places = {len(CHIEF)}", "$figures <<END", *points, "END",
                        Path(__file__).with_name("chart.gp").read_text()])
    drawn = subprocess.run(["gnuplot"], input=script, check=True, stdout=subprocess.PIPE, text=True)
    CHART.write_text(drawn.stdout)


def write():
    before, rest = PAGE.read_text().split(BEGIN)
    PAGE.write_text(before + BEGIN + text() + END + rest.split(END)[1])
    chart()


def check():
    kept = PAGE.read_text().split(BEGIN)[1].split(END)[0]
    sys.stdout.writelines(difflib.unified_diff(kept.splitlines(True), text().splitlines(True),
                                               "docs/performance.md", "benchmarks/figures"))
    if kept != text():
        sys.exit("page: the page differs from its figures; benchmarks/page.py --write writes it again")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    choice = parser.add_mutually_exclusive_group()
    choice.add_argument("--write", action="store_true", help="write the page, and draw the chart")
    choice.add_argument("--check", action="store_true", help="compare with the page")
    options = parser.parse_args()
    if options.write:
        write()
    elif options.check:
        check()
    else:
        print(text(), end="")


if __name__ == "__main__":
    main()
