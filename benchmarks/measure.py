#!/usr/bin/env python3
"""Runs the benchmarks and prints their figures as tables.

Without an option it measures the conversions that hosts use most, and other libraries beside them.
Rounds of all benchmarks are interleaved, and figures are medians.
"""

import argparse
import csv
import json
import os
import re
import subprocess
import sys
import tempfile
import time
from datetime import date
from pathlib import Path

import instructions
import page

COLUMNS = {
    "machine": ["what", "value"],
    "conversions": ["row", "conversion", "size", "instructions", "hot_ns", "cold_ns", "cold_gb_per_s",
                    "hot_of_memcpy", "cold_of_memcpy"],
    "peers": ["conversion", "size", "library", "hot_ssse3", "hot_free", "cold_ssse3", "cold_free",
              "differs"],
    "helpers": ["what", "ms"],
}


def benchmark(program, arguments, options):
    """Medians by name, each with its counters, and the context of the run."""
    with tempfile.NamedTemporaryFile(suffix=".json") as out:
        command = [program, f"--benchmark_out={out.name}", "--benchmark_out_format=json",
                   f"--benchmark_repetitions={options.repetitions}",
                   f"--benchmark_min_time={options.min_time}",
                   "--benchmark_enable_random_interleaving=true", *arguments]
        done = subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
        if done.returncode != 0:
            sys.exit(f"bench: {' '.join(map(str, command))} failed:\n{done.stderr}")
        text = Path(out.name).read_text()
    if not text:
        sys.exit("bench: no conversion fits")
    result = json.loads(text)
    failed = {b["run_name"] for b in result["benchmarks"] if b.get("error_occurred")}
    for name in sorted(failed):
        print(f"bench: {name} did not run", file=sys.stderr)
    # A single repetition is its own median.
    kind = "iteration" if options.repetitions == 1 else "median"
    return {b["run_name"]: b for b in result["benchmarks"] if b["run_name"] not in failed
            and b.get("aggregate_name", b["run_type"]) == kind}, result["context"]


def conversions(medians, counts):
    """The records of this library and of others, for conversions.csv and peers.csv."""
    seconds, copies = {}, {}
    for name, figures in medians.items():
        if name.startswith("memcpy/"):
            _, size, temperature = name.split("/")
            copies[int(size), temperature] = figures["bytes_per_second"]
        else:
            name, size, temperature, who = name.rsplit("/", 3)
            seconds.setdefault((name, size), {})[temperature, who] = figures

    own, others = [], []
    number = re.compile(r"row(\d+)/(.*)")
    for (name, size), cells in sorted(
            seconds.items(), key=lambda item: (item[0][1], int(number.match(item[0][0])[1]))):
        row, conversion = number.match(name).groups()
        ours = {temperature: cells[temperature, "kestrix"] for temperature in ("hot", "cold")}
        share = {t: f["bytes_per_second"] / copies[int(f["bytes"]), t] for t, f in ours.items()}
        own.append([row, conversion, size, f"{counts[name]:.2f}",
                    *(f"{1e9 * f['per_pixel']:.3f}" for f in ours.values()),
                    f"{ours['cold']['bytes_per_second'] / 1e9:.1f}",
                    *(f"{s:.2f}" for s in share.values())])
        for library in sorted({who.rsplit("-", 1)[0] for _, who in cells} - {"kestrix"}):
            found = {key: cells.get((key[0], f"{library}-{key[1]}"))
                     for key in [(t, level) for t in ours for level in ("ssse3", "free")]}
            ratios = [f"{f['per_pixel'] / ours[t]['per_pixel']:.2f}" if f else ""
                      for (t, _), f in found.items()]
            differs = next(f.get("label", "") for f in found.values() if f)
            others.append([conversion, size, library, *ratios, differs])
    return own, others


def helpers(medians):
    scale = {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}
    return [[re.sub(r"/(iterations:\d+|manual_time)", "", name),
             f"{scale[figures['time_unit']] * figures['real_time']:.3f}"]
            for name, figures in sorted(medians.items())]


def clean_build():
    """Minutes to build the library from scratch, without a cache of compiled objects."""
    with tempfile.TemporaryDirectory() as folder:
        configure = ["cmake", "-S", page.ROOT, "-B", folder, "-G", "Ninja",
                     "-DCMAKE_BUILD_TYPE=Release", "-DKESTRIX_BUILD_TESTS=OFF",
                     "-DKESTRIX_BUILD_BENCHMARKS=OFF", "-DKESTRIX_BUILD_EXAMPLES=OFF",
                     "-DKESTRIX_BUILD_HOST=OFF"]
        subprocess.run(configure, check=True, stdout=subprocess.DEVNULL)
        begin = time.monotonic()
        subprocess.run(["cmake", "--build", folder], check=True, stdout=subprocess.DEVNULL)
        return (time.monotonic() - begin) / 60


def machine(context):
    processor = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    system = re.search(r'PRETTY_NAME="(.*)"', Path("/etc/os-release").read_text())
    peers = [value for key, value in context.items() if key.startswith("peer ")]
    return [["measured", date.today().isoformat()],
            ["processor", f"{processor[1] if processor else os.uname().machine}, {os.cpu_count()} cores, "
                          f"last cache {int(context['last_cache_bytes']) >> 20} MiB"],
            ["system", f"{system[1] if system else 'Linux'}, Linux {os.uname().release}, "
                       f"{os.confstr('CS_GNU_LIBC_VERSION')}"],
            ["compiler", context["compiler"]],
            ["other libraries", ", ".join(peers) or "none"]]


def loading(medians):
    load = medians.get("load/manual_time")
    if load is None:
        sys.exit("bench: the shared library did not load")
    return [["size of the shared library", f"{load['file_bytes'] / 2**20:.2f} MiB"],
            ["memory of its own, when loaded", f"{load['private_bytes'] / 2**10:.0f} KiB"]]


def main():
    parser = argparse.ArgumentParser(description=__doc__, prog="script/bench",
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--all", action="store_true", help="every conversion")
    parser.add_argument("--rows", metavar="REGEX", help="conversions whose names fit")
    parser.add_argument("--size", choices=page.SIZES, help="one size, not both")
    parser.add_argument("--preview", action="store_true", help="loading and the helpers too")
    parser.add_argument("--write", action="store_true",
                        help="all of it and a build from clean, into benchmarks/figures/, "
                             "docs/performance.md and its chart")
    parser.add_argument("--repetitions", type=int, default=7, metavar="N")
    parser.add_argument("--min-time", type=float, default=0.02, metavar="S",
                        help="seconds a repetition takes at least")
    parser.add_argument("--dry-run", action="store_true", help="only check the options")
    parser.add_argument("--folder", type=Path, default=page.ROOT / "build/release",
                        help="where the programs were built")
    options = parser.parse_args()
    if options.write and (options.rows or options.size):
        parser.error("--write measures all, so it takes neither --rows nor --size")
    if options.repetitions < 1 or options.min_time <= 0:
        parser.error("--repetitions and --min-time are above 0")
    try:
        re.compile(options.rows or "")
    except re.error as error:
        parser.error(f"--rows is no regular expression: {error}")

    if options.dry_run:
        return

    programs = options.folder / "benchmarks"
    pattern = options.rows
    if pattern is None:
        everything = options.all or options.write
        pattern = "" if everything else "/(" + "|".join(map(re.escape, page.CHIEF)) + ")$"
    medians, context = benchmark(programs / "kestrix_bench", [pattern, options.size or ""], options)
    counts = instructions.count("valgrind", programs / "kestrix_instructions")
    tables = {"machine": machine(context)}
    tables["conversions"], tables["peers"] = conversions(medians, counts)
    if options.preview or options.write:
        preview, _ = benchmark(programs / "kestrix_preview_bench", [], options)
        tables["machine"] += loading(preview)
        tables["helpers"] = helpers(preview)
    if options.write:
        tables["machine"].append(["build from clean", f"{clean_build():.1f} minutes"])

    for name, records in tables.items():
        print(page.table(COLUMNS[name], records), end="\n\n")
        if options.write:
            with open(page.FIGURES / f"{name}.csv", "w", newline="") as out:
                csv.writer(out, lineterminator="\n").writerows([COLUMNS[name], *records])
    if options.write:
        page.write()


if __name__ == "__main__":
    main()
