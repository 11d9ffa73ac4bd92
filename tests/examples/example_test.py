"""Runs an example: it must paint the bars that its frames contain.

The environment names the program in EXAMPLE, the library that watches its GL objects in GL_OBJECTS,
and a display.
"""

import os
import subprocess
import tempfile
import unittest

from PIL import Image

EXAMPLE = os.environ["EXAMPLE"]
NAME = os.path.basename(EXAMPLE)

# The size of the frame, and the places of its bars, in R'G'B' of 75 % and 25 % of full level.
WIDTH, HEIGHT, BAR, TURN = 1920, 1080, 240, 810
HIGH, LOW = round(0.75 * 255), round(0.25 * 255)
BARS = [tuple(HIGH if bits & bit else LOW for bit in (2, 4, 1)) for bits in range(7, -1, -1)]
# Colours mix near a border, because chroma and every second line are interpolated. In pixels of the frame
# on each side.
MIXED = 4

# Toolkits that can count windows in units of two pixels.
SCALED = {"qt6_host": {"QT_SCALE_FACTOR": "2"}, "gtk_host": {"GDK_SCALE": "2"}}
# Examples whose view can move to another window.
DETACHING = "qt6_host", "gtk_host"
# The example that draws a red lamp in the lower left corner.
LAMP = "sdl2_host"


def run(*arguments, **environment):
    # Without these variables the toolkits print warnings about the missing desktop on standard error.
    with tempfile.TemporaryDirectory() as folder:
        desktop = {"XDG_RUNTIME_DIR": folder, "NO_AT_BRIDGE": "1", "GTK_A11Y": "none",
                   "GSETTINGS_BACKEND": "memory", "QT_QPA_PLATFORM": "xcb", "GDK_BACKEND": "x11"}
        return subprocess.run([EXAMPLE, *arguments], env={**os.environ, **desktop, **environment},
                              timeout=30, capture_output=True, check=False)


def model(x, y, shift):
    """R'G'B' at a place of the frame, or None if colours are mixed there."""
    x = (x + 6 * shift) % WIDTH
    if min(x % BAR, BAR - x % BAR) < MIXED or abs(y - TURN) < MIXED:
        return None
    bar = int(x / BAR)
    return BARS[bar if y < TURN else 7 - bar]


class Example(unittest.TestCase):
    def paint(self, width, height, *arguments, scale=1, **environment):
        """The painted picture without its alpha. It must be opaque."""
        with tempfile.TemporaryDirectory() as folder:
            path = f"{folder}/painted.png"
            result = run("--size", f"{width}x{height}", "--png", path, *arguments,
                         LD_PRELOAD=os.environ["GL_OBJECTS"], **environment)
            self.assertEqual((result.returncode, result.stderr), (0, b""))
            picture = Image.open(path)
            self.assertEqual(picture.size, (scale * width, scale * height))
            self.assertEqual(picture.getchannel("A").getextrema(), (255, 255), "not opaque")
            return picture.convert("RGB")

    def assert_bars(self, picture, shift):
        width, height = picture.size
        compared = 0
        for i, pixel in enumerate(picture.getdata()):
            y, x = divmod(i, width)
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
        colours = set(self.paint(160, 90, "--frames", "0").getdata())
        self.assertEqual(colours - ({(255, 0, 0)} if NAME == LAMP else set()), {(0, 0, 0)})

    @unittest.skipUnless(NAME == "old_host", "has one helper")
    def test_paints_without_opengl_3(self):
        self.assert_bars(self.paint(320, 180, MESA_GL_VERSION_OVERRIDE="2.1"), 0)

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
