"""Builds the light hosts as a project of their own over an installed library, and runs them.

The environment has BUILD, the build folder to install from, EXAMPLES, the project, and CMAKE and
CXX, the programs to build with; and a display.
"""

import os
import subprocess
import tempfile
import unittest

import png


def run(*command):
    result = subprocess.run(command, timeout=240, stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT, check=False)
    assert result.returncode == 0, result.stdout.decode()


class StandAlone(unittest.TestCase):
    def test_builds_and_runs_over_an_installed_library(self):
        cmake = os.environ["CMAKE"]
        with tempfile.TemporaryDirectory() as folder:
            prefix, build, picture = (f"{folder}/{name}" for name in ("prefix", "build", "a.png"))
            run(cmake, "--install", os.environ["BUILD"], "--prefix", prefix)
            run(cmake, "-S", os.environ["EXAMPLES"], "-B", build, "-G", "Ninja",
                f"-DCMAKE_PREFIX_PATH={prefix}", f"-DCMAKE_CXX_COMPILER={os.environ['CXX']}",
                "-DCMAKE_DISABLE_FIND_PACKAGE_Qt6=ON")
            run(cmake, "--build", build, "--target", "egl_host", "glx_host")
            for host in "egl_host", "glx_host":
                run(f"{build}/{host}", "--size", "80x45", "--png", picture)
                self.assertEqual(len(set(png.read(picture)[9])), 8, f"{host} shows no eight bars")


if __name__ == "__main__":
    unittest.main(verbosity=2)
