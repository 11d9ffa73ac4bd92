#!/usr/bin/env python3
"""Checks an installed library as other projects use it.

install_test.py CASE BUILD SCRATCH installs the build folder BUILD below SCRATCH. For some values of CASE
it builds a consumer there: cmake, pkg_config, dlopen, subdirectory (only configures the sources;
subdirectory_built also builds them); without_gl does so for the C library. Other values check packages, folders (of the pkg-config file),
binary, or reproducible (another build in another folder). Exits with 77 if a tool is missing.
"""

import json
import os
import pathlib
import re
import shutil
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
SOURCE = HERE.parents[1]
CONSUMER = HERE / "consumer"
C_CONSUMER = HERE / "c_consumer"


def run(*command, **options):
    """Returns what a command prints. Ends the test if the command fails."""
    result = subprocess.run(list(map(str, command)), capture_output=True, text=True, **options)
    if result.returncode:
        sys.exit(f"{' '.join(map(str, command))}: {result.returncode}\n{result.stdout}{result.stderr}")
    return result.stdout


def check(holds, what):
    if not holds:
        sys.exit(f"install_test: {what}")


def need(*tools):
    for tool in tools:
        if not shutil.which(tool):
            print(f"install_test: there is no {tool}; skipped")
            sys.exit(77)


def install(build, scratch):
    """Installs and then moves the tree: no file in it may name the place where it was."""
    run("cmake", "--install", build, "--prefix", scratch / "first")
    return (scratch / "first").rename(scratch / "installed")


def built_by_cmake(scratch, *options, consumer=CONSUMER):
    folder = scratch / consumer.name
    run("cmake", "-G", "Ninja", "-S", consumer, "-B", folder,
        "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON", *options)
    return folder


def cmake(build, scratch):
    prefix = install(build, scratch)
    for consumer in CONSUMER, C_CONSUMER:
        folder = built_by_cmake(scratch, f"-DCMAKE_PREFIX_PATH={prefix}", consumer=consumer)
        run("cmake", "--build", folder)
        run(folder / "consumer")


def pkg_config(build, scratch):
    prefix = install(build, scratch)
    file = next(prefix.rglob("KestrixPreviewAPI.pc"))
    environment = os.environ | {"PKG_CONFIG_PATH": str(file.parent)}
    flags = run("pkg-config", "--cflags", "--libs", "KestrixPreviewAPI", env=environment).split()
    run("g++", CONSUMER / "main.cpp", "-o", scratch / "consumer", *flags)
    run(scratch / "consumer", env=os.environ | {"LD_LIBRARY_PATH": str(file.parents[1])})

    flags = run("pkg-config", "--cflags", "--libs", "KestrixPixelConversion", env=environment).split()
    run("gcc", "-std=c99", C_CONSUMER / "main.c", "-o", scratch / "consumer", *flags)
    run(scratch / "consumer", env=os.environ | {"LD_LIBRARY_PATH": str(file.parents[1])})


def module(build, scratch):
    """The module finds the library by its name, from the folder that the interpreter looks in."""
    prefix = install(build, scratch)
    folder = next(prefix.rglob("kestrix/__init__.py")).parents[1]
    check(folder.name in ("dist-packages", "site-packages"), f"the module is in {folder}")
    library = next(prefix.rglob("libKestrixPixelConversion.so.1")).parent
    environment = os.environ | {"PYTHONPATH": str(folder), "LD_LIBRARY_PATH": str(library),
                                "PYTHONDONTWRITEBYTECODE": "1"}
    lines = run(sys.executable, "-m", "kestrix", env=environment).splitlines()
    check(len(lines) == 30, f"the module lists {len(lines)} formats")


def without_gl(build, scratch):
    """Configures the C library alone, as on a machine that has neither libGL nor libuuid."""
    folder = built_by_cmake(scratch, f"-DKESTRIX_SOURCE={SOURCE}", "-DCMAKE_BUILD_TYPE=Release",
                            "-DKESTRIX_BUILD_PREVIEW=OFF", "-DKESTRIX_BUILD_CONVERSION=ON",
                            "-DCMAKE_DISABLE_FIND_PACKAGE_OpenGL=ON",
                            "-DCMAKE_DISABLE_FIND_PACKAGE_LibUUID=ON",
                            "-DCMAKE_CXX_COMPILER_LAUNCHER=ccache", consumer=C_CONSUMER)
    commands = json.loads((folder / "compile_commands.json").read_text())
    parts = {pathlib.Path(c["file"]).relative_to(SOURCE).parts[0] for c in commands
             if pathlib.Path(c["file"]).is_relative_to(SOURCE)
             and not pathlib.Path(c["file"]).is_relative_to(HERE)
             and not pathlib.Path(c["file"]).is_relative_to(folder)}
    check(parts == {"conversion", "convert"}, f"the parent builds {parts}")
    return folder


def without_gl_built(build, scratch):
    folder = without_gl(build, scratch)
    run("cmake", "--build", folder)
    run(folder / "consumer")


def dlopen(build, scratch):
    prefix = install(build, scratch)
    run("g++", "-std=c++11", SOURCE / "tests/api/dlopen_host.cpp", "-I", prefix / "include",
        "-rdynamic", "-ldl", "-o", scratch / "consumer")
    run(scratch / "consumer", next(prefix.rglob("libKestrixPreviewAPI.so.1")))


def subdirectory(build, scratch):
    folder = built_by_cmake(scratch, f"-DKESTRIX_SOURCE={SOURCE}", "-DCMAKE_BUILD_TYPE=Release",
                            "-DKESTRIX_WERROR=ON", "-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
    commands = json.loads((folder / "compile_commands.json").read_text())
    own = next(c["command"] for c in commands if c["file"] == str(CONSUMER / "main.cpp"))
    flags = sorted(f for f in own.split() if re.match("-[fmOWgsD]", f))
    check(flags == ["-DNDEBUG", "-O3"], f"the parent is compiled with {flags}")
    files = [pathlib.Path(c["file"]) for c in commands]
    parts = {f.relative_to(SOURCE).parts[0] for f in files if not f.is_relative_to(HERE)
             and not f.is_relative_to(folder)}
    check(parts == {"api", "preview", "conversion", "support"}, f"the parent builds {parts}")
    return folder


def subdirectory_built(build, scratch):
    folder = subdirectory(build, scratch)
    run("cmake", "--build", folder)
    run(folder / "consumer")


def folders(build, scratch):
    """Checks the pkg-config file for every way to give the folders."""
    for libdir, includedir, says_libdir, says_includedir in [
            ("lib", "include", "/moved/lib", "/moved/include"),
            ("lib/x86_64-linux-gnu", "include/kestrix", "/moved/lib/x86_64-linux-gnu",
             "/moved/include/kestrix"),
            ("/opt/lib", "include", "/opt/lib", "/prefix/include"),
            ("lib", "/opt/include", "/moved/lib", "/opt/include")]:
        folder = scratch / "configured"
        run("cmake", "-S", SOURCE, "-B", folder, "-DCMAKE_INSTALL_PREFIX=/prefix",
            f"-DCMAKE_INSTALL_LIBDIR={libdir}", f"-DCMAKE_INSTALL_INCLUDEDIR={includedir}",
            *(f"-DKESTRIX_BUILD_{part}=OFF" for part in ("TESTS", "EXAMPLES", "TOOLS", "HOST", "BENCHMARKS")))
        # As if the installed tree had been moved.
        moved = scratch / "moved" / libdir.lstrip("/") / "pkgconfig"
        moved.mkdir(parents=True, exist_ok=True)
        shutil.copy(folder / "KestrixPreviewAPI.pc", moved)
        for variable, says in (("libdir", says_libdir), ("includedir", says_includedir)):
            got = run("pkg-config", f"--variable={variable}", "KestrixPreviewAPI",
                      env=os.environ | {"PKG_CONFIG_PATH": str(moved)}).strip()
            got = os.path.normpath(got).removeprefix(str(scratch))
            check(got == says, f"{variable} of {libdir}, {includedir} is {got}, not {says}")


def binary(build, scratch):
    """Checks hardening, and the libraries that the library needs."""
    library = next(install(build, scratch).rglob("libKestrixPreviewAPI.so.1.*"))
    dynamic = run("readelf", "--wide", "--dynamic", library)
    needed = set(re.findall(r"NEEDED.*\[(.*)\]", dynamic))
    runtime = {"libstdc++.so.6", "libgcc_s.so.1", "libc.so.6", "libm.so.6", "ld-linux-x86-64.so.2"}
    check(needed - runtime == {"libGL.so.1", "libuuid.so.1"}, f"needs {sorted(needed)}")
    check(not re.search(r"RPATH|RUNPATH|TEXTREL", dynamic), "has a run path or text relocations")
    check(re.search(r"FLAGS.*BIND_NOW|FLAGS_1.*NOW", dynamic), "binds lazily")
    segments = run("readelf", "--wide", "--segments", library)
    check("GNU_RELRO" in segments, "its relocations stay writable")
    check(re.search(r"GNU_STACK.*RW ", segments), "its stack is executable")
    text = library.read_bytes()
    check(str(SOURCE).encode() not in text, "tells where it was built")

    converter = next((scratch / "installed").rglob("libKestrixPixelConversion.so.1.*"))
    dynamic = run("readelf", "--wide", "--dynamic", converter)
    needed = set(re.findall(r"NEEDED.*\[(.*)\]", dynamic))
    check(needed == {"libc.so.6"}, f"the C library needs {sorted(needed)}")
    check(not re.search(r"RPATH|RUNPATH|TEXTREL", dynamic), "has a run path or text relocations")
    check(str(SOURCE).encode() not in converter.read_bytes(), "tells where it was built")


def reproducible(build, scratch):
    compiler = re.search(r"^CMAKE_CXX_COMPILER:\w+=(.*)$", (build / "CMakeCache.txt").read_text(), re.M)
    shutil.copytree(SOURCE, scratch / "other/place", ignore=shutil.ignore_patterns("build", ".git"))
    run("cmake", "-G", "Ninja", "-S", scratch / "other/place", "-B", scratch / "out",
        "-DCMAKE_BUILD_TYPE=Release", f"-DCMAKE_CXX_COMPILER={compiler[1]}")
    run("cmake", "--build", scratch / "out", "--target", "KestrixPreviewAPI")
    first, second = (next(folder.glob("libKestrixPreviewAPI.so.1.*")).read_bytes()
                     for folder in (build, scratch / "out"))
    check(first == second, "another build from another folder differs")


def packages(build, scratch):
    need("lintian", "dpkg-shlibdeps", "fakeroot")
    run("fakeroot", "cpack", "-G", "DEB", "-B", scratch, "--config", build / "CPackConfig.cmake")
    debs = sorted(scratch.glob("*.deb"))
    names = [deb.name.split("_")[0] for deb in debs]
    check(names == ["libkestrixpixelconversion-dev", "libkestrixpixelconversion1",
                    "libkestrixpreviewapi-dev", "libkestrixpreviewapi1"], f"packages are {names}")
    print(run("lintian", "--allow-root", "--fail-on", "error", *debs))
    for deb in debs:
        run("dpkg-deb", "--extract", deb, scratch / "root")
    for consumer in CONSUMER, C_CONSUMER:
        folder = built_by_cmake(scratch, f"-DCMAKE_PREFIX_PATH={scratch}/root/usr", consumer=consumer)
        run("cmake", "--build", folder)
        run(folder / "consumer")


CASES = [cmake, pkg_config, dlopen, module, subdirectory, subdirectory_built, without_gl, without_gl_built,
         folders, binary, reproducible, packages]

if __name__ == "__main__":
    case, build, scratch = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])
    shutil.rmtree(scratch, ignore_errors=True)
    scratch.mkdir(parents=True)
    next(c for c in CASES if c.__name__ == case)(build, scratch)
