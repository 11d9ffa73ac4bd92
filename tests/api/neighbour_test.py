"""Runs a host beside neighbours that could disturb the library: neighbour_test.py HOST LIBRARY ARCHIVE CC NM

The first neighbour exports every name that the library uses inside, as code that ends the process. The
second is another copy of the library. Both are loaded before the library, for all to see, with symbols
that are bound at once and symbols that are bound at the first call.
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

host, library, archive, compiler, nm = sys.argv[1:6]


def names(*options):
    listing = subprocess.run([nm, "--defined-only", "--extern-only", "--format=posix", *options],
                             check=True, stdout=subprocess.PIPE, text=True).stdout
    return {line.split()[0].split("@")[0] for line in listing.splitlines()
            if len(line.split()) > 1}


# Names of the C++ library and of the compiler belong to the host too.
inside = sorted(name for name in names(archive) - names("-D", library)
                if not name.startswith(("_ZSt", "_ZNSt", "_ZNKSt", "_ZGVNSt", "__", "_ZTSSt", "_ZTISt",
                                        "_ZTVSt", "DW.ref")))
for name in ("gl3", "wglInitGLExtProcs"):
    if not any(name in each for each in inside):
        sys.exit(f"the library has no {name}: is the archive its own?")

with tempfile.TemporaryDirectory() as folder:
    trap = pathlib.Path(folder, "libtrap.so")
    lines = [f'.globl "{name}"\n.type "{name}",@function\n"{name}":\nud2\n' for name in inside]
    source = trap.with_suffix(".s")
    source.write_text(".text\n" + "".join(lines) + '.section .note.GNU-stack,"",@progbits\n')
    subprocess.run([compiler, "-shared", "-nostdlib", "-o", trap, source], check=True)
    copy = pathlib.Path(folder, "another.so")
    shutil.copy(library, copy)
    for neighbour in (trap, copy):
        for binding in ("", "1"):
            environment = dict(os.environ, LD_PRELOAD=str(neighbour), LD_BIND_NOW=binding)
            result = subprocess.run([host, library], env=environment)
            if result.returncode:
                sys.exit(f"{neighbour.name}, LD_BIND_NOW={binding}: status {result.returncode}")
    print(f"{len(inside)} names")
