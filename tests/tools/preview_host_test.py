"""Runs the sample host: pixels of its screenshots, its report, its answers to bad input.

The environment names the program in PREVIEW_HOST, and a display.
"""

import os
import pty
import re
import shutil
import subprocess
import tempfile
import time
import unittest

from PIL import Image

PREVIEW_HOST = os.environ["PREVIEW_HOST"]
MAN = os.path.join(os.path.dirname(__file__), "../../docs/man")

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

    def png(self, rows):
        """Writes a picture as an opaque PNG file."""
        picture = Image.new("RGBA", (len(rows[0]), len(rows)))
        picture.putdata([(*pixel, 255) for row in rows for pixel in row])
        picture.save(self.path("picture.png"))
        return self.path("picture.png")

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
        shot = Image.open(self.shot)
        self.assertEqual(shot.size, (width, height))
        seen = [shot.getpixel((x, y)) for y in (height // 4, height * 3 // 4)
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
        path = self.png(self.picture)
        result = self.run_host("--helper", "gl", "--format", "ARGB", "--frames", "2", path,
                               "--screenshot", self.shot)
        self.assert_shown(result)
        self.assert_fields(RED, GREEN, BLUE, GREY)
        self.assertIn(b"64x64 ARGB (8ARGB_FULL), 256 bytes a row", result.stdout)

    def test_made_picture_stands_upright_when_its_rows_are_flipped(self):
        path = self.png(self.picture)
        self.assert_shown(self.run_host("--helper", "gl", "--flip", "--frames", "1", path,
                                        "--screenshot", self.shot))
        self.assert_fields(RED, GREEN, BLUE, GREY)

    def test_test_pattern_in_a_format_and_its_report(self):
        result = self.raw("--format", "r210", "--colorspace", "r709", "--frames", "3",
                          helper="gl3")
        self.assert_shown(result)
        # The first bars at 75 % are white and yellow, of studio codes here.
        yellow = Image.open(self.shot).getpixel((12, 4))
        self.assertGreater(min(yellow[:2]), 170)
        self.assertLess(yellow[2], 20)
        report = result.stdout.decode()
        for line in ("input:       test pattern", "64x64 r210 (10XRGB_BE_SMPTE), 256 bytes a row",
                     "colourspace: r709", "helper:      OpenGL 3", "shown:       3 frames"):
            self.assertIn(line, report)
        for call in "SetFrame", r"paint\+swap":
            found = re.search(call + r": +median ([0-9.]+) ms, 99th percentile ([0-9.]+) ms, "
                              r"worst ([0-9.]+) ms", report)
            figures = [float(figure) for figure in found.groups()]
            self.assertEqual(figures, sorted(figures))

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
        shot = Image.open(self.shot)
        self.assertEqual([shot.getpixel((x, 32)) for x in (32, 96, 160)], [BLACK, WHITE, BLACK])

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


class Keys(HostTest):
    def test_picture_stays_as_it_is_shown_in_other_ways(self):
        picture = fields(RED, GREEN, BLUE, GREY)
        path = self.png(picture)
        for keys in "f", "fhr", "Fhmh", "cccc", "333q":
            with self.subTest(keys):
                self.assert_shown(self.run_host("--helper", "gl", path, "--rate", "0", "--frames",
                                                str(len(keys)), "--keys", keys, "--screenshot",
                                                self.shot))
                self.assert_fields(RED, GREEN, BLUE, GREY)

    def test_moving_picture_stays_the_frame_that_it_was(self):
        shots = []
        for start, keys in ("ARGB", "tt"), ("vRGB", "ttF"):
            self.assert_shown(self.raw("--format", start, "--keys", keys, "--frames", "3"))
            shots.append(list(Image.open(self.shot).getdata()))
        self.assertEqual(*shots)

    def test_raw_frames_are_read_as_another_format(self):
        # B G R A read as A R G B.
        frames = bgra(plain(WHITE)) + bgra(plain(RED))
        self.assert_shown(self.raw("-", "--keys", "FF", stdin=frames))
        self.assert_fields(*[(0, 255, 255)] * 4)

    def test_3d_modes(self):
        eyes = (self.file("left", bgra(plain(RED))), "--right-eye",
                self.file("right", bgra(plain(BLUE))))
        for helper in "gl", "gl3":
            for start, expected, size in (("default", (RED,) * 4, (64, 64)),
                                          ("right", (RED, BLUE) * 2, (128, 64))):
                with self.subTest((helper, start)):
                    self.assert_shown(self.raw(*eyes, "--preview-3d", start, "--keys", "3",
                                               "--window", "{}x{}".format(*size), helper=helper))
                    self.assert_fields(*expected, width=size[0], height=size[1])

    def test_keys_that_can_do_nothing_say_so(self):
        report = self.raw("--format", "2vuy", "--keys", "r?t", "--frames", "3").stdout.decode()
        self.assertIn("key r:       2vuy has one range only\n", report)
        self.assertIn("  q  quit; so does Escape\n", report)
        self.assertEqual(report.count("median"), 4)
        self.assertIn("shown:       1 frame ", self.run_host("--keys", "q", "--size", "64x64")
                      .stdout.decode())


class Decisions(HostTest):
    # What is shown first, keys, and what is decided then at first and after each key. Rows are
    # counted in docs/conversions.md.
    cases = (
        ("720x576 2vuy", "hcchc", (
            "Rec. 601 by width 720; row 24 of the conversions, 2vuy to RGBA of Rec. 709",
            "Rec. 601 of 625 lines by size 720x576; colour table 1, Y'CbCr",
            "Rec. 601 of 625 lines as stated and by size 720x576; colour table 1, Y'CbCr",
            "Rec. 709 as stated; colour table 2, Y'CbCr",
            "Rec. 709 as stated; row 27 of the conversions, 2vuy to RGBA of Rec. 709",
            "Rec. 2020 as stated; row 25 of the conversions, 2vuy to RGBA of Rec. 709")),
        ("720x500 v210", "h", (
            "Rec. 601 by width 720; row 61 of the conversions, v210 to RGBA of Rec. 709",
            "Rec. 709 by size 720x500; colour table 2, Y'CbCr")),
        ("720x486 BGRv", "h", (
            "Rec. 601 by width 720; row 175 of the conversions, BGRv to RGBA of Rec. 709",
            "Rec. 601 of 525 lines by size 720x486; colour table 8, studio-range RGB")),
        ("1920x16 RGBA", "hch", (
            "Rec. 709 by width 1920; no conversion, the rows are copied",
            "Rec. 709 by size 1920x16; black: the shader does not know RGBA",
            "Rec. 601 of 525 lines as stated and by size 1920x16; "
            "black: the shader does not know RGBA",
            "Rec. 601 as stated; not shown: no row of the conversions leads from RGBA to RGBA of "
            "Rec. 709")),
        ("1280x16 r210", "rhrccc", (
            "Rec. 709 by width 1280; row 188 of the conversions, r210 to RGBA, the same in every "
            "colourspace",
            "Rec. 709 by width 1280; row 203 of the conversions, R210 to RGBA, the same in every "
            "colourspace",
            "Rec. 709 by size 1280x16; black: the shader does not know R210",
            "Rec. 709 by size 1280x16; colour table 10, studio-range RGB",
            "Rec. 601 of 525 lines as stated and by size 1280x16; colour table 8, studio-range RGB",
            "Rec. 709 as stated; colour table 10, studio-range RGB",
            "Rec. 2020 as stated; colour table 11, studio-range RGB")),
        ("64x16 BGRA --captured", "mh", (
            "Rec. 709 by width 64; captured, so held to 16..235; row 177 of the conversions, BGRv "
            "to RGBA, the same in every colourspace",
            "Rec. 709 by width 64; row 142 of the conversions, BGRA to RGBA, the same in every "
            "colourspace",
            "Rec. 709 by size 64x16; colour table 6, full-range RGB")),
        ("64x16 R10A --colorspace 2020", "F", (
            "Rec. 2020 as stated; row 319 of the conversions, R10A to RGBA of Rec. 709",
            "Rec. 2020 as stated; row 303 of the conversions, R10B to RGBA of Rec. 709")),
    )

    def decisions(self, *arguments):
        result = self.run_host("--rate", "0", "--window", "64x64", *arguments)
        self.assert_shown(result)
        return re.findall("^decided: +(.*)$", result.stdout.decode(), re.MULTILINE)

    def test_line_tells_what_each_helper_decides_and_why(self):
        for start, keys, expected in self.cases:
            with self.subTest(start):
                size, code, *more = start.split()
                self.assertEqual(self.decisions(
                    "--helper", "gl", "--size", size, "--format", code, *more, "--keys", keys,
                    "--frames", str(len(keys))), list(expected))

    def test_black_is_what_is_said_to_be_black(self):
        for code in "ARGB", "YUY2", "ay10", "Ay10", "R12l", "L64A":
            with self.subTest(code):
                decision, = self.decisions("--size", "64x64", "--format", code, "--frames", "1",
                                           "--screenshot", self.shot)
                self.assertEqual("black:" in decision,
                                 Image.open(self.shot).getpixel((2, 4)) == BLACK)


class CommandLine(HostTest):
    def setUp(self):
        super().setUp()
        self.help = self.run_host("--help").stdout.decode()
        self.options = re.findall(r"^  (--[a-z0-9-]+)", self.help, re.MULTILINE)
        self.assertGreater(len(self.options), 10)

    def complete(self, *words):
        script = ('source <("$0" --completion bash); COMP_WORDS=(preview_host "$@"); '
                  'COMP_CWORD=$#; _preview_host; echo "${COMPREPLY[@]}"')
        result = subprocess.run(["bash", "-c", script, PREVIEW_HOST, *words], capture_output=True,
                                check=True, timeout=60)
        return result.stdout.decode().split()

    def test_bash_completes_what_there_is(self):
        self.assertCountEqual(self.complete("--"), self.options)
        self.assertEqual(self.complete("--frames", ""), [])
        self.assertEqual(self.complete("--helper", "="), ["gl", "gl3"])
        self.assertEqual(self.complete("--colorspace", "=", "r"), ["r601", "r709"])
        formats = self.run_host("--list-formats").stdout.decode().splitlines()
        self.assertEqual(self.complete("--format", ""), [line.split()[0] for line in formats])

    def test_zsh_completes_the_same_options(self):
        script = self.run_host("--completion", "zsh").stdout
        self.assertCountEqual(re.findall(r"^ +'(--[a-z0-9-]+)", script.decode(), re.MULTILINE),
                              self.options)
        if shutil.which("zsh"):
            subprocess.run(["zsh", "-n"], input=script, check=True, timeout=60)

    def test_man_page_tells_of_every_option_and_key(self):
        with open(os.path.join(MAN, "preview_host.1"), encoding="utf-8") as file:
            page = file.read()
        told = re.findall(r"^\.It Fl -([a-z0-9-]+)", page, re.MULTILINE)
        self.assertCountEqual(["--" + name for name in told], self.options)
        keys = re.findall(r"^  (\S)  (.*)$", self.help, re.MULTILINE)
        told = re.findall(r"^\.It Cm (?:\\&)?(\S)\n(.*)$", page, re.MULTILINE)
        self.assertEqual(told, keys)

    @unittest.skipUnless(shutil.which("mandoc"), "needs mandoc")
    def test_man_pages_are_sound(self):
        for name in os.listdir(MAN):
            path = os.path.join(MAN, name)
            with open(path, encoding="utf-8") as file:
                link = re.fullmatch(r"\.so man3/(.*)\n", file.read())
            if link:
                self.assertIn(link[1], os.listdir(MAN))
            elif name[-1].isdigit():
                subprocess.run(["mandoc", "-T", "lint", "-W", "warning", path], check=True,
                               timeout=60)

    def test_progress_bar_only_on_a_terminal(self):
        arguments = [PREVIEW_HOST, "--helper", "gl", "--size", "64x64", "--frames", "40"]
        try:
            terminal, end = pty.openpty()
        except OSError as error:
            self.skipTest(f"needs a pseudo terminal: {error}")
        subprocess.run(arguments, stdout=subprocess.DEVNULL, stderr=end, check=True, timeout=60)
        os.close(end)
        self.assertRegex(os.read(terminal, 100000).decode(), r"#-+\] +\d+ %, frame \d+ of 40")
        os.close(terminal)
        self.assert_shown(self.run_host(*arguments[1:]))


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
                (("--keys", "fx"), "'x'"),
                (("--completion", "fish"), "bash|zsh"),
                (("--frames", "0"), "frames"),
                (("--frames=-3",), "-3"),
                (("--such-an-option",), "--such-an-option"),
                (("one", "two"), "two"),
                (("-", "--right-eye", "-", "--size", "4x4"), "right-eye")):
            with self.subTest(arguments):
                self.assert_refused(self.run_host(*arguments), word)

    def test_files(self):
        picture = self.png([[BLACK] * 8] * 8)
        for path, word in (
                (self.path("missing"), "No such file"),
                (self.folder, "directory"),
                (self.file("empty", b""), "no whole frame"),
                (self.file("short", b"\0" * 1000), "1000 of 16384 bytes"),
                (self.file("broken.png", b"\x89PNG\r\n\x1a\n" + b"nonsense"), "broken.png"),
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

    def test_old_opengl_leaves_the_old_helper_at_the_key(self):
        result = self.raw("-", "--keys", "h", stdin=bgra(plain(RED)),
                          MESA_GL_VERSION_OVERRIDE="2.1")
        self.assert_shown(result)
        self.assertIn(b"key h:       no OpenGL 3.2", result.stdout)
        self.assert_fields(RED, RED, RED, RED)

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
