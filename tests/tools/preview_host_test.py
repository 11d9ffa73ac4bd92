"""Runs preview_host: pixels of its screenshots, its report, its answers to bad input.

The environment names the program in PREVIEW_HOST, and a display.
"""

import os
import pty
import re
import shutil
import signal
import socket
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
FIELDS = RED, GREEN, BLUE, GREY

# The width and the height of a frame in pixels. A frame has four fields.
SIDE = 64


def picture(top_left, top_right, bottom_left, bottom_right):
    """An opaque picture of four fields."""
    image = Image.new("RGBA", (2, 2))
    image.putdata([(*colour, 255) for colour in (top_left, top_right, bottom_left, bottom_right)])
    return image.resize((SIDE, SIDE), Image.NEAREST)


def raw_frame(*fields, padding=0):
    """The BGRA bytes of a picture of four fields, or of one colour."""
    rows = picture(*fields * (4 // len(fields))).tobytes("raw", "BGRA")
    return b"".join(rows[i:i + 4 * SIDE] + b"\xff" * padding
                    for i in range(0, len(rows), 4 * SIDE))


class HostTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.shot = self.path("shot.png")

    def path(self, name):
        return os.path.join(self.folder, name)

    def png(self):
        picture(*FIELDS).save(self.path("picture.png"))
        return self.path("picture.png")

    def file(self, name, content):
        with open(self.path(name), "wb") as file:
            file.write(content)
        return self.path(name)

    def run_host(self, *arguments, stdin=b"", **environment):
        settings = {name: value for name, value in {**os.environ, **environment}.items() if value}
        return subprocess.run([PREVIEW_HOST, *arguments], input=stdin, env=settings, timeout=120,
                              capture_output=True, check=False)

    def shoot(self, *arguments, helper="gl", frame=None, **more):
        """Shows frames as fast as possible, `frame` from standard input, and saves the last
        picture. Returns the report."""
        given = ("--size", f"{SIDE}x{SIDE}", "-") if frame else ()
        result = self.run_host("--helper", helper, "--rate", "0", "--screenshot", self.shot, *given,
                               *arguments, stdin=frame or b"", **more)
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        return result.stdout.decode()

    def assert_fields(self, *expected, size=(SIDE, SIDE)):
        """Compares the middle of the screenshot's fields with the expected colours, four or one.
        The colour tables may make a difference of one code."""
        shot = Image.open(self.shot)
        self.assertEqual(shot.size, size)
        width, height = size
        seen = [shot.getpixel((x, y)) for y in (height // 4, height * 3 // 4)
                for x in (width // 4, width * 3 // 4)]
        for got, wanted in zip(seen, expected * (4 // len(expected)), strict=True):
            self.assertLessEqual(max(abs(a - b) for a, b in zip(got, wanted)), 1,
                                 f"{seen}, not {expected}")

    def assert_refused(self, result, *words):
        """Fails unless the run failed and printed the reason in one line."""
        message = result.stderr.decode()
        self.assertGreater(result.returncode, 0, "did not fail, or was killed by a signal")
        self.assertRegex(message, r"\Apreview_host: [^\n]+\n\Z")
        for word in words:
            self.assertIn(word, message)


class Showing(HostTest):
    def test_frames_come_out_as_they_went_in(self):
        many = raw_frame(RED) + raw_frame(BLUE) + raw_frame(*FIELDS)
        padded = raw_frame(*FIELDS, padding=20)
        for options, frame, expected, report in (
                ("", raw_frame(*FIELDS), FIELDS, "input:       raw frames from standard input"),
                ("", many, FIELDS, "shown:       3 frames"),
                ("--frames 1", many, [RED], "shown:       1 frame\n"),
                ("--flip", raw_frame(*FIELDS), (BLUE, GREY, RED, GREEN), "bottom row first"),
                (f"--row-bytes {4 * SIDE + 20}", padded, FIELDS, "276 bytes per row"),
                ("--captured", raw_frame(WHITE), None, "256 bytes per row, captured")):
            for helper in "gl", "gl3":
                with self.subTest((options, helper)):
                    self.assertIn(report, self.shoot(*options.split(), frame=frame, helper=helper))
                    if expected:
                        self.assert_fields(*expected)

    def test_pictures_are_encoded(self):
        for options, report in (("--format ARGB", "64x64 ARGB (8ARGB_FULL), 256 bytes per row"),
                                ("--flip", "64x64 BGRA (8BGRA_FULL), 256 bytes per row, bottom")):
            with self.subTest(options):
                self.assertIn(report, self.shoot(*options.split(), "--frames", "2", self.png()))
                self.assert_fields(*FIELDS)

    def test_slow_pipe_is_waited_for(self):
        with subprocess.Popen([PREVIEW_HOST, "--helper", "gl", "--size", f"{SIDE}x{SIDE}",
                               "--screenshot", self.shot, "-"],
                              stdin=subprocess.PIPE, stdout=subprocess.DEVNULL) as host:
            frame = raw_frame(*FIELDS)
            for start in range(0, len(frame), 5000):
                host.stdin.write(frame[start:start + 5000])
                host.stdin.flush()
                time.sleep(0.05)
            host.stdin.close()
            self.assertEqual(host.wait(60), 0)
        self.assert_fields(*FIELDS)

    def test_test_pattern_in_a_format_and_its_report(self):
        report = self.shoot("--size", "64x64", "--format", "r210", "--colorspace", "r709",
                            "--frames", "3", helper="gl3")
        # The first bars are white and yellow of 75 %, here in studio codes.
        yellow = Image.open(self.shot).getpixel((12, 4))
        self.assertGreater(min(yellow[:2]), 170)
        self.assertLess(yellow[2], 20)
        for line in ("input:       test pattern", "64x64 r210 (10XRGB_BE_SMPTE), 256 bytes per row",
                     "colourspace: r709", "helper:      OpenGL 3", "shown:       3 frames"):
            self.assertIn(line, report)
        for call in "SetFrame", r"paint\+swap":
            found = re.search(call + r": +median ([0-9.]+) ms, 99th percentile ([0-9.]+) ms, "
                              r"worst ([0-9.]+) ms", report)
            figures = [float(figure) for figure in found.groups()]
            self.assertEqual(figures, sorted(figures))

    def test_both_eyes(self):
        right = self.file("right", raw_frame(BLUE))
        for preview, size, expected in (("side", (2 * SIDE, SIDE), (RED, BLUE, RED, BLUE)),
                                        ("topbottom", (SIDE, 2 * SIDE), (RED, RED, BLUE, BLUE)),
                                        ("default", (SIDE, 2 * SIDE), (RED, RED, BLUE, BLUE)),
                                        ("left", (SIDE, SIDE), [RED]),
                                        ("right", (SIDE, SIDE), [BLUE])):
            with self.subTest(preview):
                self.shoot("--right-eye", right, "--preview-3d", preview, frame=raw_frame(RED))
                self.assert_fields(*expected, size=size)

    def test_wider_window_has_black_beside_the_picture(self):
        self.shoot("--window", "192x64", frame=raw_frame(WHITE))
        shot = Image.open(self.shot)
        self.assertEqual([shot.getpixel((x, 32)) for x in (32, 96, 160)], [BLACK, WHITE, BLACK])

    def test_lists_all_formats(self):
        lines = self.run_host("--list-formats").stdout.decode().splitlines()
        self.assertEqual(len(lines), 30)
        self.assertIn("v210  10YUV422_LE              16 bytes for 6 pixels  gl gl3  ffmpeg -f "
                      "rawvideo -c:v v210", lines)
        self.assertIn("R10A  10RGBA_BE_FULL            4 bytes for 1 pixel   gl    ", lines)
        self.assertIn("b64a  16ARGB_BE_FULL            8 bytes for 1 pixel         ", lines)

    def test_ctrl_c_ends_with_report_and_screenshot(self):
        for settings in {}, NoDisplay.nothing:
            environment = {k: v for k, v in os.environ.items() if k not in settings}
            with subprocess.Popen([PREVIEW_HOST, "--helper", "gl", "--size", "64x64", "--frames",
                                   "100000", "--screenshot", self.shot], env=environment,
                                  stdout=subprocess.PIPE, start_new_session=True) as host:
                report = ""
                while "decided:" not in report:
                    report += host.stdout.readline().decode()
                time.sleep(0.2)
                os.killpg(host.pid, signal.SIGINT)
                report += host.stdout.read().decode()
            self.assertEqual(host.returncode, 0)
            self.assertRegex(report, r"shown: +\d+ frames[^\0]*screenshot: ")
            self.assertEqual(Image.open(self.shot).size, (64, 64))

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
        for keys in "f", "fhr", "Fhmh", "cccc", "333q":
            with self.subTest(keys):
                self.shoot(self.png(), "--frames", str(len(keys)), "--keys", keys)
                self.assert_fields(*FIELDS)

    def test_moving_picture_stays_the_frame_that_it_was(self):
        shots = []
        for start, keys in ("ARGB", "tt"), ("vRGB", "ttF"):
            self.shoot("--size", "64x64", "--format", start, "--keys", keys, "--frames", "3")
            shots.append(Image.open(self.shot).tobytes())
        self.assertEqual(*shots)

    def test_raw_frames_are_read_as_another_format(self):
        # The bytes B G R A are read as A R G B.
        self.shoot("--keys", "FF", frame=raw_frame(WHITE) + raw_frame(RED))
        self.assert_fields((0, 255, 255))

    def test_3d_modes(self):
        right = self.file("right", raw_frame(BLUE))
        for helper in "gl", "gl3":
            for start, expected, size in (("default", [RED], (64, 64)),
                                          ("right", (RED, BLUE, RED, BLUE), (128, 64))):
                with self.subTest((helper, start)):
                    self.shoot("--right-eye", right, "--preview-3d", start, "--keys", "3",
                               "--window", "{}x{}".format(*size), helper=helper,
                               frame=raw_frame(RED))
                    self.assert_fields(*expected, size=size)

    def test_other_formats_are_those_that_the_helper_shows(self):
        report = self.shoot("--size", "64x64", "--format", "v210", "--keys", "ffF", "--frames", "3",
                            helper="gl3")
        self.assertEqual(re.findall("^key .: +(....)", report, re.MULTILINE),
                         ["Ay10", "ARGB", "Ay10"])

    def test_keys_that_can_do_nothing_say_so(self):
        report = self.shoot("--size", "64x64", "--format", "2vuy", "--keys", "r?t", "--frames", "3")
        self.assertIn("key r:       2vuy has one range only\n", report)
        self.assertIn("  q  quit; so does Escape\n", report)
        self.assertEqual(report.count("median"), 4)
        self.assertIn("shown:       1 frame\n", self.shoot("--keys", "q", "--size", "64x64"))


class Decisions(HostTest):
    # The frames, the keys, and the decisions before the first key and after each key. docs/conversions.md
    # lists the numbers of the rows.
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
        ("1920x16 RGBA", "hchc", (
            "Rec. 709 by width 1920; no conversion, the rows are copied",
            "Rec. 709 by size 1920x16; black: the shader does not know RGBA, the fixed-function "
            "helper does",
            "Rec. 601 of 525 lines as stated and by size 1920x16; "
            "black: the shader does not know RGBA, the fixed-function helper does",
            "Rec. 601 as stated; not shown: no row of the conversions converts RGBA to RGBA of "
            "Rec. 709, from Rec. 601 as stated; SetFrame returns E_INVALIDARG",
            "Rec. 709 as stated; no conversion, the rows are copied")),
        ("1280x16 r210", "rhrccc", (
            "Rec. 709 by width 1280; row 188 of the conversions, r210 to RGBA, the same in every "
            "colourspace",
            "Rec. 709 by width 1280; row 203 of the conversions, R210 to RGBA, the same in every "
            "colourspace",
            "Rec. 709 by size 1280x16; black: the shader does not know R210, the fixed-function "
            "helper does",
            "Rec. 709 by size 1280x16; colour table 10, studio-range RGB",
            "Rec. 601 of 525 lines as stated and by size 1280x16; colour table 8, studio-range RGB",
            "Rec. 709 as stated; colour table 10, studio-range RGB",
            "Rec. 2020 as stated; colour table 11, studio-range RGB")),
        ("64x16 BGRA --captured", "mh", (
            "Rec. 709 by width 64; captured, so clipped to 16..235; row 177 of the conversions, BGRv "
            "to RGBA, the same in every colourspace",
            "Rec. 709 by width 64; row 142 of the conversions, BGRA to RGBA, the same in every "
            "colourspace",
            "Rec. 709 by size 64x16; colour table 6, full-range RGB")),
        ("64x16 R10A --colorspace 2020", "F", (
            "Rec. 2020 as stated; row 319 of the conversions, R10A to RGBA of Rec. 709",
            "Rec. 2020 as stated; row 303 of the conversions, R10B to RGBA of Rec. 709")),
    )

    def decisions(self, *arguments, helper):
        report = self.shoot("--window", "64x64", *arguments, helper=helper)
        return re.findall("^decided: +(.*)$", report, re.MULTILINE)

    def test_line_tells_what_each_helper_decides_and_why(self):
        for start, keys, expected in self.cases:
            with self.subTest(start):
                size, code, *more = start.split()
                self.assertEqual(self.decisions(
                    "--size", size, "--format", code, *more, "--keys", keys, "--frames",
                    str(len(keys)), helper="gl"), list(expected))

    def test_black_is_what_is_said_to_be_black(self):
        for code in "ARGB", "YUY2", "ay10", "Ay10", "R12l", "L64A":
            with self.subTest(code):
                result = self.run_host("--size", "64x64", "--format", code, "--frames", "1",
                                       "--rate", "0", "--screenshot", self.shot)
                if result.returncode:
                    self.assert_refused(result, "black: the shader does not know " + code)
                else:
                    self.assertNotEqual(Image.open(self.shot).getpixel((2, 4)), BLACK)

    def test_narrow_frames_are_refused_for_their_width(self):
        result = self.run_host("--size", "7x3", "--format", "v210", "--helper", "gl")
        self.assert_refused(result, "7 pixels is too narrow: v210 needs a width of 13 or more")

    def test_a_last_frame_that_is_not_visible_is_a_failure(self):
        result = self.run_host("--size", "64x64", "--format", "RGBA", "--helper", "gl", "--keys",
                               "h", "--frames", "1")
        self.assert_refused(result, "last frame", "does not know RGBA")

    def test_slow_renderer_is_told_once(self):
        report = self.shoot("--size", "64x64", "--keys", "hhh", "--frames", "3", helper="gl3")
        self.assertEqual(report.count("software renderer"), "llvmpipe" in report)


class CommandLine(HostTest):
    def setUp(self):
        super().setUp()
        self.help = self.run_host("--help").stdout.decode()
        self.options = re.findall(r"^  (--[a-z0-9-]+)", self.help, re.MULTILINE)
        self.assertGreater(len(self.options), 10)

    def test_bash_completes_the_options(self):
        script = """source /usr/share/bash-completion/bash_completion
            source <(preview_host --completion bash)
            COMP_WORDS=(preview_host --) COMP_CWORD=1 COMP_LINE="preview_host --" COMP_POINT=15
            complete -p preview_host
            _longopt preview_host -- preview_host
            echo "${COMPREPLY[@]}" """
        path = os.path.dirname(PREVIEW_HOST) + ":" + os.environ["PATH"]
        result = subprocess.run(["bash", "-c", script], capture_output=True, check=True, timeout=60,
                                env={**os.environ, "PATH": path}, text=True)
        command, words = result.stdout.splitlines()
        self.assertEqual(command, "complete -F _longopt preview_host")
        self.assertEqual(set(words.split()), set(self.options))

    @unittest.skipUnless(shutil.which("zsh"), "needs zsh")
    def test_zsh_takes_the_completion_script(self):
        script = self.run_host("--completion", "zsh").stdout.decode()
        self.assertTrue(script.startswith("#compdef preview_host\n"))
        result = subprocess.run(["zsh", "-f"], capture_output=True, check=True, timeout=60, text=True,
                                input=f"autoload -U compinit; compinit -u -D\n{script}"
                                      "print $_comps[preview_host]")
        self.assertEqual((result.stdout, result.stderr), ("_gnu_generic\n", ""))

    @unittest.skipUnless(shutil.which("zsh"), "needs zsh")
    def test_completion_goes_where_zsh_looks(self):
        with open(os.path.join(os.path.dirname(PREVIEW_HOST), "cmake_install.cmake"),
                  encoding="utf-8") as file:
            folder = re.search(r"/(share/zsh/[a-z-]+)", file.read())[1]
        result = subprocess.run(["zsh", "-fc", "print -l $fpath"], capture_output=True, check=True,
                                timeout=60, text=True)
        self.assertIn(f"/usr/local/{folder}", result.stdout.splitlines())

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

    def test_version(self):
        self.assertRegex(self.run_host("--version").stdout.decode(), r"\Apreview_host \d+\.\d+\.\d+\n\Z")

    def test_progress_only_on_a_terminal(self):
        arguments = "--helper", "gl", "--size", "64x64", "--frames", "40"
        try:
            terminal, end = pty.openpty()
        except OSError as error:
            self.skipTest(f"needs a pseudo terminal: {error}")
        subprocess.run([PREVIEW_HOST, *arguments], stdout=subprocess.DEVNULL, stderr=end, check=True,
                       timeout=60)
        os.close(end)
        self.assertRegex(os.read(terminal, 100000).decode(),
                         r"\A(\rframe \d+ of 40)+\r\x1b\[K\Z")
        os.close(terminal)
        self.assertEqual(self.run_host(*arguments).stderr, b"")


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
        small = self.path("small.png")
        Image.new("RGB", (8, 8)).save(small)
        for path, word in (
                (self.path("missing"), "No such file"),
                (self.folder, "is a directory; the input is a PNG picture"),
                (self.file("picture.jpg", b"\xff\xd8\xff\xe0JFIF"), "is a JPEG picture"),
                (self.file("empty", b""), "no complete frame"),
                (self.file("short", b"\0" * 1000), "1000 of 16384 bytes"),
                (self.file("broken.png", b"\x89PNG\r\n\x1a\n" + b"nonsense"), "broken.png"),
                (small, "size")):
            with self.subTest(path):
                self.assert_refused(self.run_host("--size", "64x64", path), word)
        self.assert_refused(self.run_host(self.file("raw", b"\0" * 64)), "--size")
        self.assert_refused(self.run_host("--size", "64x64", "-", "--right-eye",
                                          self.path("missing")), "No such file")

    def test_short_last_frame_is_dropped(self):
        self.assert_refused(self.run_host(
            "--helper", "gl", "--size", "64x64", "--screenshot", self.shot, "-",
            stdin=raw_frame(RED) + raw_frame(BLUE)[:-1]), "incomplete", "16383 of 16384 bytes")
        self.assert_fields(RED)

    def test_what_can_not_be_shown(self):
        for options, environment, word in (
                (("--screenshot", self.path("no/shot.png")), {}, self.path("no/shot.png")),
                (("--helper", "gl", "--format", "S12L"), {}, "no row of the conversions"),
                (("--row-bytes", "4000000"), {}, "textures"),
                ((), {"MESA_GL_VERSION_OVERRIDE": "2.1"}, "OpenGL 3.2"),
                ((), {"DISPLAY": ":4711"}, "no display")):
            with self.subTest(word):
                self.assert_refused(self.run_host("--size", "64x2", "--frames", "1", *options,
                                                  **environment), word)

    def test_unwritable_screenshot_is_found_at_the_start(self):
        kept = self.file("kept.png", b"as it was")
        result = self.run_host("--screenshot", self.path("no/shot.png"))
        self.assert_refused(result, "can't write")
        self.assertEqual(result.stdout, b"")
        self.run_host("--screenshot", kept, "--helper", "gl", "--format", "S12L")
        with open(kept, "rb") as file:
            self.assertEqual(file.read(), b"as it was")

    def test_old_opengl_leaves_the_old_helper_at_the_key(self):
        report = self.shoot("--keys", "h", frame=raw_frame(RED), MESA_GL_VERSION_OVERRIDE="2.1")
        self.assertIn("key h:       no OpenGL 3.2", report)
        self.assert_fields(RED)


class NoDisplay(HostTest):
    nothing = {"DISPLAY": None, "WAYLAND_DISPLAY": None}

    def assert_server_ended(self, report):
        number = report.split("Xvfb :")[1].split()[0]
        for _ in range(50):
            with socket.socket(socket.AF_UNIX) as client:
                if client.connect_ex(f"/tmp/.X11-unix/X{number}") != 0:
                    return
            time.sleep(0.1)
        self.fail("the server still runs")

    def test_uses_a_virtual_one_and_ends_it(self):
        self.assert_server_ended(self.shoot(frame=raw_frame(BLUE), **self.nothing))
        self.assert_fields(BLUE)

    def test_the_virtual_one_ends_if_the_program_is_killed(self):
        settings = {name: value for name, value in os.environ.items() if name not in self.nothing}
        with subprocess.Popen([PREVIEW_HOST, "--helper", "gl", "--size", "64x64", "--frames",
                               "100000"], env=settings, stdout=subprocess.PIPE) as host:
            report = ""
            while "decided:" not in report:
                report += host.stdout.readline().decode()
            host.kill()
        self.assert_server_ended(report)

    def test_made_frames_come_to_an_end(self):
        self.assertIn("shown:       10 frames", self.shoot("--size", "64x64", **self.nothing))

    def test_says_if_there_is_no_virtual_one_either(self):
        self.assert_refused(self.run_host(PATH=self.folder, **self.nothing), "no display")


if __name__ == "__main__":
    unittest.main(verbosity=2)
