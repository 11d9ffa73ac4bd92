"""Runs a toolkit's host: what it paints has to be the bars that its frames hold.

The environment names the program in EXAMPLE, what watches its GL objects in GL_OBJECTS, and a
display.
"""

import os
import subprocess
import tempfile
import unittest

import png

EXAMPLE = os.environ["EXAMPLE"]
NAME = os.path.basename(EXAMPLE)

# The frame, and its bars in R'G'B' of 75 % and 25 % of full level.
WIDTH, HEIGHT, BAR, TURN = 1920, 1080, 240, 810
HIGH, LOW = round(0.75 * 255), round(0.25 * 255)
BARS = [tuple(HIGH if bits & bit else LOW for bit in (2, 4, 1)) for bits in range(7, -1, -1)]
# Pixels of the frame on either side of a border within which its colours mix, chroma and every
# second line being interpolated.
MIXED = 4

# Toolkits that count windows in units of two pixels, when told to.
SCALED = {"qt6_host": {"QT_SCALE_FACTOR": "2"}, "gtk_host": {"GDK_SCALE": "2"}}
# With a view that can change its window.
DETACHING = "qt6_host", "gtk_host"
# With a red lamp of their own in the lower left corner.
LAMP = "sdl2_host"


def run(*arguments, **environment):
    # What toolkits miss on a machine without a desktop, and tell on the standard error.
    with tempfile.TemporaryDirectory() as folder:
        desktop = {"XDG_RUNTIME_DIR": folder, "NO_AT_BRIDGE": "1", "GTK_A11Y": "none",
                   "GSETTINGS_BACKEND": "memory", "QT_QPA_PLATFORM": "xcb", "GDK_BACKEND": "x11"}
        return subprocess.run([EXAMPLE, *arguments], env={**os.environ, **desktop, **environment},
                              timeout=30, capture_output=True, check=False)


def model(x, y, shift):
    """R'G'B' at a place of the frame, None where it is mixed."""
    x = (x + 6 * shift) % WIDTH
    if min(x % BAR, BAR - x % BAR) < MIXED or abs(y - TURN) < MIXED:
        return None
    bar = int(x / BAR)
    return BARS[bar if y < TURN else 7 - bar]


class ToolkitHost(unittest.TestCase):
    def paint(self, width, height, *arguments, scale=1, **environment):
        """A picture as painted, which is opaque, without its alpha."""
        with tempfile.TemporaryDirectory() as folder:
            path = f"{folder}/painted.png"
            result = run("--size", f"{width}x{height}", "--png", path, *arguments,
                         LD_PRELOAD=os.environ["GL_OBJECTS"], **environment)
            self.assertEqual((result.returncode, result.stderr), (0, b""))
            rows = png.read(path)
        self.assertEqual((len(rows[0]), len(rows)), (scale * width, scale * height))
        self.assertEqual({pixel[3] for row in rows for pixel in row}, {255}, "not opaque")
        return [[pixel[:3] for pixel in row] for row in rows]

    def assert_bars(self, rows, shift):
        width, height = len(rows[0]), len(rows)
        compared = 0
        for y, row in enumerate(rows):
            for x, pixel in enumerate(row):
                wanted = model(WIDTH * (x + 0.5) / width, HEIGHT * (y + 0.5) / height, shift)
                if NAME == LAMP and x < width // 16 and y >= height - height // 16:
                    wanted = (255, 0, 0)
                if wanted:
                    compared += 1
                    if any(abs(got - code) > 1 for got, code in zip(pixel, wanted)):
                        self.fail(f"{pixel}, not {wanted} at {x}, {y} of {width} by {height}")
        self.assertGreater(compared, 0.9 * width * height)

    def test_paints_the_bars_over_the_whole_window(self):
        for width, height, frames in (320, 180, 1), (161, 203, 3):
            with self.subTest(f"{width} by {height}"):
                self.assert_bars(self.paint(width, height, "--frames", str(frames)), frames - 1)

    def test_without_a_frame_is_opaque_black(self):
        colours = {pixel for row in self.paint(160, 90, "--frames", "0") for pixel in row}
        self.assertEqual(colours - ({(255, 0, 0)} if NAME == LAMP else set()), {(0, 0, 0)})

    @unittest.skipUnless(NAME in SCALED, "windows are counted in pixels")
    def test_fills_a_framebuffer_larger_than_its_window(self):
        self.assert_bars(self.paint(160, 90, scale=2, **SCALED.get(NAME, {})), 0)

    @unittest.skipUnless(NAME in DETACHING, "the view has one window")
    def test_goes_on_in_another_window(self):
        self.assert_bars(self.paint(160, 90, "--frames", "6", "--detach"), 5)

    def test_refuses_bad_input_in_one_line(self):
        for arguments in ("--size", "0x5"), ("--frames", "x"), ("--what",), ("--png", "/missing/a"):
            with self.subTest(arguments):
                result = run(*arguments)
                self.assertGreater(result.returncode, 0)
                self.assertRegex(result.stderr.decode(), rf"\A{NAME}: [^\n]+\n\Z")


if __name__ == "__main__":
    unittest.main(verbosity=2)
