"""Builds examples as a project of their own with an installed library, and runs them.

The environment has a display and these variables: BUILD, the build folder to install from; EXAMPLES, the
project; CMAKE and CXX, the programs to build with. Qt and GTK are left out, because they take long to
build.
"""

import os
import subprocess
import tempfile
import unittest

from PIL import Image


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
            hosts = "egl_host", "glx_host", "old_host"
            run(cmake, "--build", build, "--target", *hosts)
            for host in hosts:
                run(f"{build}/{host}", "--size", "80x45", "--png", picture)
                row = Image.open(picture).crop((0, 9, 80, 10))
                self.assertEqual(len(row.getcolors()), 8, f"{host} does not show eight bars")


if __name__ == "__main__":
    unittest.main(verbosity=2)
