"""Runs the host of interface revision 14.2.1: it has to paint what the current host paints.

The environment names both programs in OLD_HOST and PREVIEW_HOST, and a display.
"""

import os
import subprocess
import tempfile
import unittest

OLD_HOST = os.environ["OLD_HOST"]
PREVIEW_HOST = os.environ["PREVIEW_HOST"]


def run(*command, **environment):
    return subprocess.run(command, env={**os.environ, **environment}, timeout=120,
                          capture_output=True, check=False)


class OldHost(unittest.TestCase):
    def test_paints_what_the_current_host_paints(self):
        with tempfile.TemporaryDirectory() as folder:
            for helper in "gl", "gl3":
                with self.subTest(helper):
                    old, current = (f"{folder}/{helper}-{host}.png" for host in ("old", "current"))
                    result = run(OLD_HOST, helper, old)
                    self.assertEqual((result.returncode, result.stderr), (0, b""))
                    run(PREVIEW_HOST, "--helper", helper, "--size", "640x360", "--frames", "1",
                        "--screenshot", current)
                    with open(old, "rb") as one, open(current, "rb") as other:
                        self.assertTrue(one.read() == other.read(), "the pictures differ")

    def test_refuses_bad_input_in_one_line(self):
        for arguments, environment in (((), {}), (("gl4",), {}), (("gl", "a", "b"), {}),
                                       (("gl", "/missing/a.png"), {}),
                                       (("gl",), {"DISPLAY": ":4711"})):
            with self.subTest(arguments):
                result = run(OLD_HOST, *arguments, **environment)
                self.assertGreater(result.returncode, 0)
                self.assertRegex(result.stderr.decode(), r"\Aold_host: [^\n]+\n\Z")


if __name__ == "__main__":
    unittest.main(verbosity=2)
