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
    symbols = run("nm", "--dynamic", library)
    check("__stack_chk_fail" in symbols, "does not check its stack")
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


def configured(build, folder, *options):
    """Configures the sources anew with other options, and copies what is built from a build folder."""
    cache = (build / "CMakeCache.txt").read_text()
    compiler, = re.findall(r"^CMAKE_CXX_COMPILER:\w+=(.*)$", cache, re.M)
    run("cmake", "-G", "Ninja", "-S", SOURCE, "-B", folder, "-DCMAKE_BUILD_TYPE=Release",
        f"-DCMAKE_CXX_COMPILER={compiler}", *options,
        *(f"-DKESTRIX_BUILD_{part}=OFF" for part in ("TESTS", "EXAMPLES", "BENCHMARKS")))
    for script in folder.rglob("cmake_install.cmake"):
        for name in re.findall(f'"{folder}/([^"]+)"', script.read_text()):
            if not (folder / name).exists() and (build / name).is_file():
                shutil.copy2(build / name, folder / name, follow_symlinks=False)
    return folder


def uninstall(build, scratch):
    folder = configured(build, scratch / "build", f"-DCMAKE_INSTALL_PREFIX={scratch}/prefix")
    run("cmake", "--install", folder)
    run("cmake", "--install", folder, "--component", "tools")
    (scratch / "prefix/include/kept.h").touch()
    check((scratch / "prefix/bin/preview_host").exists(), "the tools are not installed")
    run("cmake", "--build", folder, "--target", "uninstall")
    left = [path for path in (scratch / "prefix").rglob("*")
            if path.is_file() or path.is_symlink() or "kestrix" in path.name.lower()]
    check([path.name for path in left] == ["kept.h"], f"uninstall leaves {left}")


def static(build, scratch):
    """Archives are refused, by a project of its own, and not built for a parent."""
    result = subprocess.run(["cmake", "-S", SOURCE, "-B", scratch / "alone", "-DBUILD_SHARED_LIBS=OFF"],
                            capture_output=True, text=True)
    check(result.returncode and "shared ones only" in result.stderr, "BUILD_SHARED_LIBS=OFF is taken")
    built_by_cmake(scratch, f"-DKESTRIX_SOURCE={SOURCE}", "-DBUILD_SHARED_LIBS=OFF")


def version(build, scratch):
    """The headers, the pkg-config files and the libraries tell the version of the project."""
    prefix = install(build, scratch)
    for name, macros in ("KestrixPreviewAPI", "KESTRIX_PREVIEW_API_VERSION"), \
                        ("KestrixPixelConversion", "KESTRIX_PIXEL_CONVERSION_VERSION"):
        file, = prefix.rglob(f"{name}.pc")
        told = run("pkg-config", "--modversion", file).strip()
        header = run("gcc", "-x", "c++", "-E", "-dM", prefix / f"include/{name}.h")
        numbers = [int(re.search(rf"#define {macros}_{part} (\d+)$", header, re.M)[1])
                   for part in ("MAJOR", "MINOR", "PATCH")]
        check(".".join(map(str, numbers)) == told, f"{name}.h tells {numbers} and not {told}")
        check(f'#define {macros}_STRING "{told}"' in header, f"{name}.h has no string {told}")
        library, = prefix.rglob(f"lib{name}.so.1.*")
        notes = run("readelf", "--notes", library)
        check(f'{{"name":"lib{name}","version":"{told}"}}' in notes, f"the note of {library} is {notes}")


# The packages, what they contain in any case, and whether programs of all processors can have them at once.
PACKAGES = {
    "kestrix-tools": ("usr/bin/preview_host", "foreign"),
    "libkestrixpixelconversion-dev": ("usr/include/KestrixPixelConversion.h", "same"),
    "libkestrixpixelconversion1": ("usr/lib/*/libKestrixPixelConversion.so.1", "same"),
    "libkestrixpreviewapi-dev":
        ("usr/share/doc/libkestrixpreviewapi-dev/examples/KestrixGLStateGuard.h", "same"),
    "libkestrixpreviewapi1": ("usr/lib/*/libKestrixPreviewAPI.so.1", "same"),
    "python3-kestrix": ("usr/lib/python3/dist-packages/kestrix/__init__.py", "no"),
}


def packages(build, scratch):
    need("lintian", "dpkg-shlibdeps", "fakeroot")
    check_packages(configured(build, scratch / "build", "-DCMAKE_INSTALL_PREFIX=/usr",
                              "-DCPACK_DEBIAN_DEBUGINFO_PACKAGE=ON"), scratch)


def packages_built(build, scratch):
    """As a user makes them, with real debug symbols."""
    need("lintian", "dpkg-shlibdeps", "fakeroot")
    shutil.copytree(SOURCE, scratch / "tree", ignore=shutil.ignore_patterns("build", ".git"))
    run("cmake", "--preset", "package", cwd=scratch / "tree")
    run("cmake", "--build", "--preset", "package", cwd=scratch / "tree")
    check_packages(scratch / "tree/build/package", scratch)
    for package in scratch.glob("*.ddeb"):
        run("dpkg-deb", "--extract", package, scratch / "debug")
    # These packages can't say by themselves that the project has no address of mail.
    print(run("lintian", "--allow-root", "--fail-on", "error,warning",
              "--suppress-tags", "malformed-contact", *scratch.glob("*.ddeb")))
    for file in (scratch / "debug").rglob("*.debug"):
        check(".debug_info" in run("readelf", "--wide", "--sections", file), f"{file} is empty")


def check_packages(folder, scratch):
    run("fakeroot", "cpack", "-G", "DEB", "-B", scratch, "--config", folder / "CPackConfig.cmake")
    debs = {deb.name.split("_")[0]: deb for deb in scratch.glob("*.deb")}
    check(sorted(debs) == sorted(PACKAGES), f"packages are {sorted(debs)}")
    print(run("lintian", "--allow-root", "--fail-on", "error,warning", *debs.values()))
    root = scratch / "root"
    synopses = set()
    (scratch / "control").mkdir()
    for name, (content, multi_arch) in PACKAGES.items():
        run("dpkg-deb", "--control", debs[name], scratch / "control" / name)
        run("dpkg-deb", "--extract", debs[name], root)
        control = {file.name for file in (scratch / "control" / name).iterdir()}
        check(control <= {"control", "md5sums", "shlibs", "symbols", "triggers"},
              f"{name} has maintainer scripts: {control}")
        told = run("dpkg-deb", "--field", debs[name], "Multi-Arch").strip()
        check(told == multi_arch, f"{name} is Multi-Arch: {told}")
        synopses.add(run("dpkg-deb", "--field", debs[name], "Description").splitlines()[0])
        check(any(root.glob(content)), f"{name} has no {content}")
        if "symbols" in control:
            library, = root.glob(content)
            run("dpkg-gensymbols", f"-p{name}", "-v1.0.0", "-c4", f"-e{library}", "-O/dev/null",
                f"-I{scratch}/control/{name}/symbols", cwd=scratch)
    check(len(synopses) == len(PACKAGES), f"synopses are {synopses}")
    debug = {deb.name.split("_")[0] for deb in scratch.glob("*.ddeb")}
    check(debug == {"libkestrixpixelconversion1-dbgsym", "libkestrixpreviewapi1-dbgsym",
                    "kestrix-tools-dbgsym"}, f"packages of debug symbols are {debug}")

    for consumer in CONSUMER, C_CONSUMER:
        build = built_by_cmake(scratch, f"-DCMAKE_PREFIX_PATH={root}/usr", consumer=consumer)
        run("cmake", "--build", build)
        run(build / "consumer")
    library, = root.glob("usr/lib/*/libKestrixPixelConversion.so.1")
    environment = os.environ | {"LD_LIBRARY_PATH": str(library.parent), "PYTHONDONTWRITEBYTECODE": "1",
                                "PYTHONPATH": str(root / "usr/lib/python3/dist-packages")}
    run(sys.executable, "-m", "kestrix", env=environment)
    for program in (root / "usr/bin").iterdir():
        run(program, "--help", env=environment)


def archive(build, scratch):
    run("cpack", "-G", "TGZ", "-B", scratch, "--config", build / "CPackConfig.cmake")
    file, = scratch.glob("*.tar.gz")
    run("tar", "--extract", "--file", file, "--directory", scratch)
    folder = scratch / file.name.removesuffix(".tar.gz")
    run(folder / "bin/preview_host", "--help")
    for consumer in CONSUMER, C_CONSUMER:
        built = built_by_cmake(scratch, f"-DCMAKE_PREFIX_PATH={folder}", consumer=consumer)
        run("cmake", "--build", built)
        run(built / "consumer")


CASES = [cmake, pkg_config, dlopen, module, subdirectory, subdirectory_built, without_gl,
         without_gl_built, folders, binary, version, static, uninstall, reproducible, packages,
         packages_built, archive]

if __name__ == "__main__":
    case, build, scratch = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])
    shutil.rmtree(scratch, ignore_errors=True)
    scratch.mkdir(parents=True)
    next(c for c in CASES if c.__name__ == case)(build, scratch)
