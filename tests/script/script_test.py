#!/usr/bin/env python3
"""Checks that scripts answer --help, and refuse what they do not know, before they install or build anything."""

import os
import pathlib
import stat
import subprocess
import sys
import tempfile

SCRIPTS = pathlib.Path(__file__).resolve().parents[2] / "script"
TOOLS = ["apt-get", "cmake", "ctest", "dpkg-query", "ffmpeg", "git", "montage", "ninja", "sudo", "xvfb-run"]
REFUSED = {
    "bench": ["--nonsense", "--size nonsense", "--preset", "--preset nonsense", "convert nonsense"],
    "bootstrap": ["nonsense", "--nonsense", "lint nonsense"],
    "build": ["nonsense", "--nonsense", "release --nonsense"],
    "fuzz": ["", "nonsense", "10 nonsense"],
    "gallery": ["nonsense"],
    "lint": ["nonsense"],
    "test": ["--nonsense", "--preset", "--preset nonsense", "Name nonsense"],
}

faults = []
with tempfile.TemporaryDirectory() as folder:
    for tool in TOOLS:
        file = pathlib.Path(folder, tool)
        file.write_text('#!/bin/sh\necho "$(basename "$0")" >>"$(dirname "$0")/called"\nexit 9\n')
        file.chmod(stat.S_IRWXU)
    called = pathlib.Path(folder, "called")

    def run(script, arguments):
        called.unlink(missing_ok=True)
        done = subprocess.run([SCRIPTS / script, *arguments.split()], capture_output=True, text=True,
                              env=os.environ | {"PATH": f"{folder}:{os.environ['PATH']}"}, timeout=60)
        if called.exists():
            faults.append(f"{script} {arguments}: calls {called.read_text()}")
        return done

    names = [file.name for file in SCRIPTS.iterdir() if os.access(file, os.X_OK)]
    for script in names:
        for arguments in "--help", "release --help":
            done = run(script, arguments)
            if done.returncode != 0 or f"script/{script}" not in done.stdout or done.stderr:
                faults.append(f"{script} {arguments}: {done.returncode} {done.stdout}{done.stderr}")
        # demo passes its arguments to preview_host, which refuses them.
        if script not in REFUSED and script != "demo":
            faults.append(f"{script}: nothing that it refuses is known here")
    for script, lines in REFUSED.items():
        for arguments in lines:
            done = run(script, arguments)
            if done.returncode != 2 or done.stdout or not done.stderr:
                faults.append(f"{script} {arguments}: {done.returncode} {done.stdout}{done.stderr}")

sys.exit("\n".join(faults) or None)
