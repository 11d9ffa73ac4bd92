"""Runs the sample host: pixels of its screenshots, its report, its answers to bad input.

The environment names the program in PREVIEW_HOST, and a display.
"""

import os
import subprocess
import tempfile
import time
import unittest

import png

PREVIEW_HOST = os.environ["PREVIEW_HOST"]

RED = (255, 0, 0)
GREEN = (0, 255, 0)
BLUE = (0, 0, 255)
WHITE = (255, 255, 255)
BLACK = (0, 0, 0)
GREY = (100, 100, 100)

# Frames are this large each way, of four fields.
SIDE = 64


def fields(top_left, top_right, bottom_left, bottom_right):
    """A picture of four fields, as rows of (r, g, b)."""
    half = SIDE // 2
    return ([[top_left] * half + [top_right] * half] * half +
            [[bottom_left] * half + [bottom_right] * half] * half)


def plain(colour):
    return fields(colour, colour, colour, colour)


def bgra(rows, padding=0):
    """The bytes of a picture as a raw frame."""
    return b"".join(b"".join(bytes((b, g, r, 255)) for r, g, b in row) + b"\xff" * padding
                    for row in rows)


class HostTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.shot = self.path("shot.png")

    def path(self, name):
        return os.path.join(self.folder, name)

    def file(self, name, content):
        with open(self.path(name), "wb") as file:
            file.write(content)
        return self.path(name)

    def run_host(self, *arguments, stdin=b"", **environment):
        settings = {**os.environ, **environment}
        settings = {name: value for name, value in settings.items() if value is not None}
        return subprocess.run([PREVIEW_HOST, *arguments], input=stdin, env=settings, timeout=120,
                              capture_output=True, check=False)

    def raw(self, *arguments, helper="gl", **more):
        """Shows raw frames of the usual size as fast as possible."""
        return self.run_host("--helper", helper, "--size", f"{SIDE}x{SIDE}", "--rate", "0",
                             "--screenshot", self.shot, *arguments, **more)

    def assert_fields(self, *expected, width=SIDE, height=SIDE):
        """Compares the screenshot's fields, in their middle, with those expected; a code of
        difference is the colour table's to make."""
        rows = png.read(self.shot)
        self.assertEqual((len(rows[0]), len(rows)), (width, height))
        seen = [rows[y][x] for y in (height // 4, height * 3 // 4)
                for x in (width // 4, width * 3 // 4)]
        for got, wanted in zip(seen, expected, strict=True):
            for component, code in zip(got, wanted):
                self.assertAlmostEqual(component, code, delta=1, msg=f"{seen}, not {expected}")

    def assert_shown(self, result):
        self.assertEqual((result.returncode, result.stderr), (0, b""))

    def assert_refused(self, result, *words):
        """The run failed, and said why in one line."""
        message = result.stderr.decode()
        self.assertNotEqual(result.returncode, 0)
        self.assertGreater(result.returncode, 0, "killed by a signal")
        self.assertRegex(message, r"\Apreview_host: [^\n]+\n\Z")
        for word in words:
            self.assertIn(word, message)


class Showing(HostTest):
    picture = fields(RED, GREEN, BLUE, GREY)

    def test_raw_file_through_both_helpers(self):
        frame = self.file("frame", bgra(self.picture))
        for helper in "gl", "gl3":
            with self.subTest(helper):
                self.assert_shown(self.raw(frame, helper=helper))
                self.assert_fields(RED, GREEN, BLUE, GREY)

    def test_standard_input_shows_its_last_frame(self):
        frames = bgra(plain(RED)) + bgra(plain(BLUE)) + bgra(self.picture)
        result = self.raw("-", stdin=frames)
        self.assert_shown(result)
        self.assert_fields(RED, GREEN, BLUE, GREY)
        self.assertIn(b"shown:       3 frames", result.stdout)

    def test_frames_limits_what_is_read(self):
        frames = bgra(plain(RED)) + bgra(plain(BLUE))
        self.assert_shown(self.raw("-", "--frames", "1", stdin=frames))
        self.assert_fields(RED, RED, RED, RED)

    def test_slow_pipe_is_waited_for(self):
        with subprocess.Popen([PREVIEW_HOST, "--helper", "gl", "--size", f"{SIDE}x{SIDE}",
                               "--screenshot", self.shot, "-"],
                              stdin=subprocess.PIPE, stdout=subprocess.DEVNULL) as host:
            frame = bgra(self.picture)
            for start in range(0, len(frame), 5000):
                host.stdin.write(frame[start:start + 5000])
                host.stdin.flush()
                time.sleep(0.05)
            host.stdin.close()
            self.assertEqual(host.wait(60), 0)
        self.assert_fields(RED, GREEN, BLUE, GREY)

    def test_flip(self):
        self.assert_shown(self.raw("--flip", "-", stdin=bgra(self.picture)))
        self.assert_fields(BLUE, GREY, RED, GREEN)

    def test_row_bytes(self):
        frame = bgra(self.picture, padding=20)
        self.assert_shown(self.raw("--row-bytes", str(4 * SIDE + 20), "-", stdin=frame))
        self.assert_fields(RED, GREEN, BLUE, GREY)

    def test_png_picture_in_another_format(self):
        path = self.path("picture.png")
        png.write(path, [[(*pixel, 255) for pixel in row] for row in self.picture])
        result = self.run_host("--helper", "gl", "--format", "ARGB", "--frames", "2", path,
                               "--screenshot", self.shot)
        self.assert_shown(result)
        self.assert_fields(RED, GREEN, BLUE, GREY)
        self.assertIn(b"64x64 ARGB (8ARGB_FULL), 256 bytes a row", result.stdout)

    def test_made_picture_stands_upright_when_its_rows_are_flipped(self):
        path = self.path("picture.png")
        png.write(path, [[(*pixel, 255) for pixel in row] for row in self.picture])
        self.assert_shown(self.run_host("--helper", "gl", "--flip", "--frames", "1", path,
                                        "--screenshot", self.shot))
        self.assert_fields(RED, GREEN, BLUE, GREY)

    def test_test_pattern_in_a_format_and_its_report(self):
        result = self.raw("--format", "r210", "--colorspace", "r709", "--frames", "3",
                          helper="gl3")
        self.assert_shown(result)
        # The first bars at 75 % are white and yellow, of studio codes here.
        yellow = png.read(self.shot)[4][12]
        self.assertGreater(min(yellow[:2]), 170)
        self.assertLess(yellow[2], 20)
        report = result.stdout.decode()
        for line in ("input:       test pattern", "64x64 r210 (10XRGB_BE_SMPTE), 256 bytes a row",
                     "colourspace: r709", "helper:      OpenGL 3", "shown:       3 frames"):
            self.assertIn(line, report)
        self.assertRegex(report, r"SetFrame: +mean [0-9.]+ ms, longest [0-9.]+ ms")
        self.assertRegex(report, r"PaintGL: +mean [0-9.]+ ms, longest [0-9.]+ ms")

    def test_both_eyes(self):
        left = self.file("left", bgra(plain(RED)))
        right = self.file("right", bgra(plain(BLUE)))
        for preview, size, expected in (
                ("side", (2 * SIDE, SIDE), (RED, BLUE, RED, BLUE)),
                ("topbottom", (SIDE, 2 * SIDE), (RED, RED, BLUE, BLUE)),
                ("default", (SIDE, 2 * SIDE), (RED, RED, BLUE, BLUE)),
                ("left", (SIDE, SIDE), (RED, RED, RED, RED)),
                ("right", (SIDE, SIDE), (BLUE, BLUE, BLUE, BLUE))):
            with self.subTest(preview):
                self.assert_shown(self.raw(left, "--right-eye", right, "--preview-3d", preview))
                self.assert_fields(*expected, width=size[0], height=size[1])

    def test_wider_window_has_black_beside_the_picture(self):
        self.assert_shown(self.raw("--window", "192x64", "-", stdin=bgra(plain(WHITE))))
        row = png.read(self.shot)[32]
        self.assertEqual([row[32], row[96], row[160]], [BLACK, WHITE, BLACK])

    def test_captured_frames_are_said_to_be(self):
        result = self.raw("--captured", "-", stdin=bgra(self.picture), helper="gl3")
        self.assertIn(b"256 bytes a row, captured", result.stdout)

    def test_lists_all_formats(self):
        result = self.run_host("--list-formats")
        self.assert_shown(result)
        lines = result.stdout.decode().splitlines()
        self.assertEqual(len(lines), 30)
        self.assertIn("v210  10YUV422_LE              16 bytes for 6 pixels", lines)

    def test_reader_of_the_report_may_go(self):
        read_end, write_end = os.pipe()
        os.close(read_end)
        with os.fdopen(write_end, "wb") as closed:
            result = subprocess.run([PREVIEW_HOST, "--helper", "gl", "--size", "64x64",
                                     "--frames", "1", "--screenshot", self.shot],
                                    stdout=closed, check=False, timeout=120)
        self.assertEqual(result.returncode, 0)
        self.assertTrue(os.path.exists(self.shot))


class BadInput(HostTest):
    def test_options(self):
        for arguments, word in (
                (("--format", "nope"), "nope"),
                (("--helper", "gl4"), "gl4"),
                (("--colorspace", "r999"), "r999"),
                (("--preview-3d", "up"), "up"),
                (("--size", "0x10"), "0x10"),
                (("--size=-64x64",), "-64x64"),
                (("--size", "64"), "64"),
                (("--size", "64x64x"), "64x64x"),
                (("--size", "999999x4"), "999999x4"),
                (("--size", "16384x16384", "--format", "b64a"), "too large"),
                (("--size", "64x64", "--row-bytes", "255"), "256"),
                (("--size", "7x2", "--format", "v210", "--row-bytes", "31"), "32"),
                (("--size", "64x64", "--row-bytes=-256"), "-256"),
                (("--rate=-1",), "rate"),
                (("--rate", "fast"), "fast"),
                (("--frames", "0"), "frames"),
                (("--frames=-3",), "-3"),
                (("--such-an-option",), "--such-an-option"),
                (("one", "two"), "two"),
                (("-", "--right-eye", "-", "--size", "4x4"), "right-eye")):
            with self.subTest(arguments):
                self.assert_refused(self.run_host(*arguments), word)

    def test_files(self):
        picture = self.path("picture.png")
        png.write(picture, [[(0, 0, 0, 255)] * 8] * 8)
        for path, word in (
                (self.path("missing"), "No such file"),
                (self.folder, "directory"),
                (self.file("empty", b""), "no whole frame"),
                (self.file("short", b"\0" * 1000), "1000 of 16384 bytes"),
                (self.file("broken.png", png.SIGNATURE + b"nonsense"), "broken.png"),
                (picture, "size")):
            with self.subTest(path):
                self.assert_refused(self.raw(path), word)
        self.assert_refused(self.run_host(self.file("raw", b"\0" * 64)), "--size")
        self.assert_refused(self.raw("-", "--right-eye", self.path("missing"),
                                     stdin=bgra(plain(RED))), "No such file")

    def test_short_last_frame_is_dropped(self):
        frames = bgra(plain(RED)) + bgra(plain(BLUE))[:-1]
        self.assert_refused(self.raw("-", stdin=frames), "short", "16383 of 16384 bytes")
        self.assert_fields(RED, RED, RED, RED)

    def test_screenshot_that_can_not_be_written(self):
        path = self.path("no/shot.png")
        self.assert_refused(self.run_host("--helper", "gl", "--size", "64x64", "--frames", "1",
                                          "--screenshot", path), path)

    def test_format_that_the_helper_can_not_convert(self):
        self.assert_refused(self.raw("--format", "S12L", "--frames", "1"), "no conversion")

    def test_rows_longer_than_a_texture(self):
        self.assert_refused(self.run_host("--size", "64x2", "--row-bytes", "4000000"), "textures")

    def test_old_opengl(self):
        self.assert_refused(self.raw("--frames", "1", helper="gl3", MESA_GL_VERSION_OVERRIDE="2.1"),
                            "OpenGL 3.2")

    def test_display_that_is_not_there(self):
        self.assert_refused(self.raw("--frames", "1", DISPLAY=":4711"), "no display")


class NoDisplay(HostTest):
    def test_uses_a_virtual_one_and_ends_it(self):
        result = self.raw("-", stdin=bgra(plain(BLUE)), DISPLAY=None, WAYLAND_DISPLAY=None)
        self.assert_shown(result)
        self.assert_fields(BLUE, BLUE, BLUE, BLUE)
        number = result.stdout.decode().split("Xvfb :")[1].split()[0]
        self.assertFalse(os.path.exists(f"/tmp/.X{number}-lock"), "the server still runs")

    def test_made_frames_come_to_an_end(self):
        result = self.raw(DISPLAY=None, WAYLAND_DISPLAY=None)
        self.assert_shown(result)
        self.assertIn(b"shown:       10 frames", result.stdout)

    def test_says_where_there_is_no_virtual_one_either(self):
        self.assert_refused(self.raw(DISPLAY=None, WAYLAND_DISPLAY=None, PATH=self.folder),
                            "no display")


if __name__ == "__main__":
    unittest.main(verbosity=2)
