#!/usr/bin/env python3
"""Runs the benchmarks, and tells in tables what they say.

Left alone, it measures the conversions that hosts use most, with other libraries beside them. Rounds
of all benchmarks are interleaved; figures are medians.
"""

import argparse
import json
import os
import platform
import re
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
PAGE = ROOT / "docs/performance.md"
CHART = ROOT / "docs/images/performance.svg"
BUDGETS = ROOT / "benchmarks/instructions/g++-12.txt"

# What hosts use most.
CHIEF_ROWS = [
    "2vuy:709/BGRA:709", "v210:709/BGRA:709", "BGRA:709/2vuy:709", "BGRA:709/v210:709",
    "v210/2vuy", "2vuy/v210", "2vuy/YUY2", "YUY2/2vuy", "BGRA/ARGB", "BGRA/RGBA", "RGB3/RGBA",
    "RGBA/RGB3", "R210/BGRA", "BGRA/R210", "R10L/BGRA", "BGRA/R10L", "r210/BGRA", "BGRA/r210",
    "b64a/BGRA", "R12L/BGRA", "BGRA/R12L", "Ay10:709/BGRA:709", "Ay10/v210",
    "BGRA:2020/BGRA:709",
]
CHART_ROWS = CHIEF_ROWS[:6] + ["BGRA/RGBA", "R10L/BGRA", "r210/BGRA", "BGRA:2020/BGRA:709"]
SIZES = ("1920x1080", "3840x2160")
LEVELS = ("ssse3", "free")
BEGIN, END = "<!-- measured: begin -->", "<!-- measured: end -->"


def benchmark(program, arguments, repetitions, min_time):
    """Medians by name, each with its counters, and the context of the run."""
    with tempfile.NamedTemporaryFile(suffix=".json") as out:
        command = [program, f"--benchmark_out={out.name}", "--benchmark_out_format=json",
                   f"--benchmark_repetitions={repetitions}", f"--benchmark_min_time={min_time}",
                   "--benchmark_enable_random_interleaving=true",
                   "--benchmark_report_aggregates_only=true", *arguments]
        done = subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
        if done.returncode != 0:
            sys.exit(f"bench: {' '.join(map(str, command))} failed:\n{done.stderr}")
        result = json.load(open(out.name))
    for name in sorted({b["run_name"] for b in result["benchmarks"] if b.get("error_occurred")}):
        print(f"bench: {name} did not run", file=sys.stderr)
    return {b["run_name"]: b for b in result["benchmarks"]
            if b.get("aggregate_name") == "median" and not b.get("error_occurred")}, result["context"]


def instructions():
    lines = (line.split() for line in BUDGETS.read_text().splitlines())
    return {line[0]: float(line[1]) for line in lines if line and line[0] != "#"}


class Row:
    """What was measured of a conversion: seconds a pixel by (size, temperature, who)."""

    def __init__(self, name):
        self.name = name
        self.short = name.split("/", 1)[1]
        self.seconds, self.bytes, self.labels = {}, {}, {}

    def nanoseconds(self, size, temperature):
        return 1e9 * self.seconds[size, temperature, "kestrix"]

    def peers(self):
        return sorted({who.rsplit("-", 1)[0] for _, _, who in self.seconds if who != "kestrix"})

    def ratio(self, size, temperature, who):
        key = (size, temperature, who)
        if key not in self.seconds:
            return None
        return self.seconds[key] / self.seconds[size, temperature, "kestrix"]


def collect(medians):
    rows, copies = {}, {}
    for name, figures in medians.items():
        if name.startswith("memcpy/"):
            _, size, temperature = name.split("/")
            copies[int(size), temperature] = figures["bytes_per_second"]
            continue
        *row, size, temperature, who = name.split("/")
        row = rows.setdefault("/".join(row), Row("/".join(row)))
        row.seconds[size, temperature, who] = figures["per_pixel"]
        row.labels[who] = figures.get("label", "")
        if who == "kestrix":
            row.bytes[size, temperature] = (figures["bytes"], figures["bytes_per_second"])
    return sorted(rows.values(), key=lambda r: int(re.match(r"row(\d+)", r.name).group(1))), copies


def share(row, copies, size, temperature):
    total, rate = row.bytes[size, temperature]
    return rate / copies[int(total), temperature]


def table(header, lines):
    """A table in Markdown whose columns line up; those behind the first are right-aligned."""
    widths = [max(len(line[i]) for line in [header, *lines]) for i in range(len(header))]
    def row(cells):
        cells = [c.ljust(w) if i == 0 else c.rjust(w) for i, (c, w) in enumerate(zip(cells, widths))]
        return "| " + " | ".join(cells) + " |"
    rule = "|" + "|".join("-" * (w + 2) if i == 0 else "-" * (w + 1) + ":"
                          for i, w in enumerate(widths)) + "|"
    return "\n".join([row(header), rule, *map(row, lines)])


def own_table(rows, copies, size):
    counts = instructions()
    lines = []
    for row in rows:
        if (size, "hot", "kestrix") not in row.seconds:
            continue
        gigabytes = row.bytes[size, "cold"][1] / 1e9
        lines.append([f"`{row.short}`", f"{counts.get(row.name, 0):.2f}",
                      f"{row.nanoseconds(size, 'hot'):.3f}", f"{row.nanoseconds(size, 'cold'):.3f}",
                      f"{gigabytes:.1f}", f"{share(row, copies, size, 'hot'):.0%}",
                      f"{share(row, copies, size, 'cold'):.0%}"])
    return table(["conversion", "instr/px", "ns/px hot", "ns/px cold", "GB/s cold",
                  "of memcpy hot", "of memcpy cold"], lines)


def peer_table(rows, size):
    lines = []
    for row in rows:
        for peer in row.peers():
            ratios = [row.ratio(size, temperature, f"{peer}-{level}")
                      for temperature in ("hot", "cold") for level in LEVELS]
            if all(ratio is None for ratio in ratios):
                continue
            cells = ["" if ratio is None else f"{ratio:.2f}" for ratio in ratios]
            lines.append([f"`{row.short}`", peer, *cells, row.labels.get(f"{peer}-free") or row.labels.get(f"{peer}-ssse3", "")])
    return table(["conversion", "peer", "hot, SSSE3", "hot, free", "cold, SSSE3", "cold, free",
                  "what it does differently"], lines) if lines else "No peer was found."


def preview_table(medians):
    lines = []
    for name, figures in sorted(medians.items()):
        scale = {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}[figures["time_unit"]]
        lines.append([re.sub(r"/(iterations:\d+|manual_time)", "", name), f"{scale * figures['real_time']:.3f}"])
    return table(["what", "ms"], lines)


def binary_lines(medians):
    load = medians.get("load/manual_time")
    if load is None:
        return "The shared library did not load."
    return (f"The shared library is {load['file_bytes'] / 2**20:.2f} MiB, and has "
            f"{load['private_bytes'] / 2**10:.0f} KiB of memory to itself when it has been loaded.")


def time_build():
    """Minutes that the library takes from clean, without a cache of compiled objects."""
    with tempfile.TemporaryDirectory() as folder:
        configure = ["cmake", "-S", ROOT, "-B", folder, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release",
                     "-DKESTRIX_BUILD_TESTS=OFF", "-DKESTRIX_BUILD_BENCHMARKS=OFF",
                     "-DKESTRIX_BUILD_EXAMPLES=OFF", "-DKESTRIX_BUILD_TOOLS=OFF",
                     "-DKESTRIX_BUILD_HOST=OFF"]
        subprocess.run(configure, check=True, stdout=subprocess.DEVNULL)
        begin = time.monotonic()
        subprocess.run(["cmake", "--build", folder], check=True, stdout=subprocess.DEVNULL)
        return (time.monotonic() - begin) / 60


def processor():
    for line in open("/proc/cpuinfo"):
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return platform.machine()


def conditions(context):
    compiler = subprocess.run(["g++", "--version"], capture_output=True, text=True).stdout
    peers = [value for key, value in context.items() if key.startswith("peer ")]
    return "\n".join([
        f"- processor: {processor()}, {os.cpu_count()} cores, "
        f"last cache {int(context['last_cache_bytes']) >> 20} MiB",
        f"- compiler: {compiler.splitlines()[0]}",
        f"- peers: {', '.join(peers) or 'none'}",
        f"- system: {platform.freedesktop_os_release()['PRETTY_NAME']}, "
        f"Linux {platform.release()}, {platform.libc_ver()[0]} {platform.libc_ver()[1]}",
    ])


def chart(rows, size):
    """Bars of time a pixel, hot: this library, and below it its peers with all that the processor has.
    Each conversion has its own scale."""
    by_name = {row.short: row for row in rows}
    left, width, bar, gap = 190, 330, 17, 12
    svg, y = [], 40
    for row in (by_name[name] for name in CHART_ROWS if name in by_name):
        bars = [(row.nanoseconds(size, "hot"), "this library", "#2b6cb0")]
        for peer in row.peers():
            seconds = row.seconds.get((size, "hot", f"{peer}-free"))
            differs = row.labels.get(f"{peer}-free")
            if seconds is not None:
                bars.append((1e9 * seconds, f"{peer} ({differs})" if differs else peer, "#b0b7c0"))
        if len(bars) == 1:
            continue
        longest = max(time for time, _, _ in bars)
        svg.append(f'<text x="{left - 10}" y="{y + 12}" text-anchor="end">{row.short}</text>')
        for time, label, colour in bars:
            length = max(time / longest * width, 1)
            svg.append(f'<rect x="{left}" y="{y}" width="{length:.1f}" height="{bar - 3}" '
                       f'fill="{colour}"/>')
            svg.append(f'<text x="{left + length + 6:.1f}" y="{y + 11}" font-size="11">'
                       f'{time:.2f}  {label}</text>')
            y += bar
        y += gap
    if not svg:
        return
    head = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{left + width + 330}" height="{y}" '
            'font-family="sans-serif" font-size="13">',
            '<rect width="100%" height="100%" fill="white"/>',
            f'<text x="12" y="24" font-weight="bold">Nanoseconds a pixel, {size}, one core: this '
            'library with SSSE3, others with all that the processor has</text>']
    CHART.write_text("\n".join([*head, *svg, "</svg>", ""]))


def measure(arguments, programs):
    """What was asked for, as sections of Markdown."""
    pattern = arguments.rows
    if pattern is None:
        pattern = "" if arguments.all else "/(" + "|".join(map(re.escape, CHIEF_ROWS)) + ")$"
    medians, context = benchmark(programs / "kestrix_bench", [pattern, arguments.size],
                                 arguments.repetitions, arguments.min_time)
    rows, copies = collect(medians)
    if not rows:
        sys.exit(f"bench: no conversion fits '{pattern}'")
    sizes = [size for size in SIZES if any((size, "hot", "kestrix") in r.seconds for r in rows)]
    sections = [conditions(context)]

    chief = [row for row in rows if row.short in CHIEF_ROWS] if arguments.all else rows
    for size in sizes:
        sections += [f"### Beside memcpy, {size}", own_table(chief, copies, size)]
    for size in sizes:
        sections += [f"### Beside other libraries, {size}: their time over ours",
                     peer_table(chief, size)]
    if arguments.preview:
        preview, _ = benchmark(programs / "kestrix_preview_bench", [], 3, arguments.min_time)
        sections += ["### Loading and the helpers", binary_lines(preview), preview_table(preview)]
    if arguments.clean_build:
        sections.append(f"A build of the library from clean takes {time_build():.1f} minutes.")
    if arguments.all:
        for size in sizes:
            sections += [f"### All rows, {size}", own_table(rows, copies, size)]
    return "\n\n".join(sections), rows, sizes


def main():
    parser = argparse.ArgumentParser(description=__doc__, prog="script/bench",
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--all", action="store_true", help="every row of the table")
    parser.add_argument("--rows", metavar="REGEX", help="rows whose names fit")
    parser.add_argument("--size", default="", choices=["", *SIZES], help="one size, not both")
    parser.add_argument("--preview", action="store_true", help="loading, tables and helpers too")
    parser.add_argument("--clean-build", action="store_true", help="a build from clean too")
    parser.add_argument("--write", action="store_true", help="into docs/performance.md")
    parser.add_argument("--repetitions", type=int, default=7, metavar="N")
    parser.add_argument("--min-time", type=float, default=0.02, metavar="S",
                        help="seconds a repetition takes at least")
    parser.add_argument("--folder", type=Path, default=ROOT / "build/release",
                        help="where the programs were built")
    arguments = parser.parse_args()
    programs = arguments.folder / "benchmarks"

    text, rows, sizes = measure(arguments, programs)
    print(text)
    if arguments.write:
        page = PAGE.read_text()
        before, after = page.split(BEGIN)[0], page.split(END)[1]
        PAGE.write_text(f"{before}{BEGIN}\n\n{text}\n\n{END}{after}")
        chart(rows, sizes[0])
    return 0


if __name__ == "__main__":
    sys.exit(main())
