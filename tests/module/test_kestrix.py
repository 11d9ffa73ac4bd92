"""The Python module: what it makes of arrays, buffers and answers of the library."""

import array
import inspect
import mmap
import subprocess
import sys
import threading

import kestrix
import numpy as np
import pytest

WIDTH, HEIGHT = 13, 5


def random_bytes(*shape, seed=1):
    return np.random.default_rng(seed).integers(0, 256, shape, np.uint8)


def argb_to_bgra(picture, **options):
    return kestrix.convert(picture, "ARGB", "BGRA", WIDTH, HEIGHT, **options)


@pytest.fixture
def argb():
    return random_bytes(HEIGHT, WIDTH, 4)


# --- Shapes and values ---


@pytest.mark.parametrize(
    "name, shape, dtype",
    [
        ("RGBA", (HEIGHT, WIDTH, 4), "u1"),
        ("RGB3", (HEIGHT, WIDTH, 3), "u1"),
        ("R10B", (HEIGHT, WIDTH), ">u4"),
        ("R10L", (HEIGHT, WIDTH), "<u4"),
        ("v210", (HEIGHT, 3 * 16), "u1"),
        ("Ay10", (HEIGHT, 4 * 16), "u1"),
    ],
)
def test_results_have_the_shape_of_their_format(name, shape, dtype):
    source = random_bytes(HEIGHT, kestrix.row_bytes("2vuy", WIDTH))
    result = kestrix.convert(source, "2vuy", name, WIDTH, HEIGHT, src_colorspace="709")
    assert result.shape == shape and result.dtype == dtype


def test_words_have_the_codes_of_a_pixel(argb):
    """Red, green and blue of 10 bits from the top of the word, and two unused bits on either side."""
    for name, shifts in {"R10B": (22, 12, 2), "R10L": (22, 12, 2), "R210": (20, 10, 0)}.items():
        words = kestrix.convert(argb, "ARGB", name, WIDTH, HEIGHT, src_colorspace="709")
        for component, shift in enumerate(shifts, 1):
            assert ((words >> shift & 1023) == argb[..., component] * 4.0).all(), name
        back = kestrix.convert(words, name, "ARGB", WIDTH, HEIGHT, src_colorspace="709")
        assert (back[..., 1:] == argb[..., 1:]).all()


def test_v210_is_black_grey_and_white_of_rec_709():
    """ITU-R BT.709-6, 3.4: Y' of 64 is black and of 940 white; Cb and Cr of 512 are no colour."""
    for luma, grey in ((64, 0), (940, 255)):
        words = [512 | luma << 10 | 512 << 20, luma | 512 << 10 | luma << 20]
        frame = np.array(words * 4, "<u4").view(np.uint8)
        result = kestrix.convert(frame, "v210", "BGRA", 12, 1, src_colorspace="709")
        assert result.reshape(-1, 4).tolist() == [[grey, grey, grey, 255]] * 12


@pytest.mark.parametrize("conversion", kestrix.conversions(), ids=lambda c: f"row{c.row}")
def test_every_row_gives_the_same_by_threads_and_strides(conversion):
    formats = conversion.src_format, conversion.dst_format
    options = dict(
        src_colorspace=conversion.src_colorspace, dst_colorspace=conversion.dst_colorspace
    )
    rows = random_bytes(64, kestrix.row_bytes(formats[0], 29))
    expected = kestrix.convert(rows, *formats, 29, 64, **options)
    spread = np.zeros((64, 2, rows.shape[1] + 3), np.uint8)[::-1, 0]
    spread[:, : rows.shape[1]] = rows
    assert (kestrix.convert(spread, *formats, 29, 64, threads=4, **options) == expected).all()


# --- Sources ---


def test_strides_of_a_source_are_honoured(argb):
    expected = argb[..., ::-1]
    assert (argb_to_bgra(argb) == expected).all()
    assert (argb_to_bgra(argb[::-1]) == expected[::-1]).all()
    assert (argb_to_bgra(argb.reshape(HEIGHT, -1)) == expected).all()
    wide = random_bytes(2 * HEIGHT, WIDTH + 3, 4)
    assert (argb_to_bgra(wide[1::2, 2:-1]) == wide[1::2, 2:-1, ::-1]).all()
    assert (argb_to_bgra(np.asfortranarray(argb)) == expected).all()
    assert (argb_to_bgra(argb[:, :, ::-1]) == argb).all()
    assert (argb_to_bgra(np.repeat(argb.ravel(), 2)[::2]) == expected).all()


def test_sources_may_be_any_buffer(argb, tmp_path):
    file = tmp_path / "argb"
    file.write_bytes(argb.tobytes())
    with file.open("rb") as opened, mmap.mmap(opened.fileno(), 0, prot=mmap.PROT_READ) as mapped:
        sources = [argb.tobytes(), bytearray(argb), memoryview(argb), mapped]
        sources += [array.array("H", argb.tobytes()), np.fromfile(file, np.uint8)]
        for source in sources:
            assert (argb_to_bgra(source) == argb[..., ::-1]).all(), type(source)


def test_rows_of_a_buffer_lie_as_told(argb):
    padded = np.zeros((HEIGHT, WIDTH * 4 + 9), np.uint8)
    padded[:, : WIDTH * 4] = argb.reshape(HEIGHT, -1)
    for sign, expected in (1, argb[..., ::-1]), (-1, argb[::-1, :, ::-1]):
        result = argb_to_bgra(padded.tobytes(), src_row_bytes=sign * padded.shape[1])
        assert (result == expected).all()


# --- Results in memory of the caller ---


def test_out_gets_the_picture_and_nothing_beside_it(argb):
    memory = np.full((2 * HEIGHT, WIDTH + 2, 4), 77, np.uint8)
    out = memory[::-2, 1:-1]
    assert argb_to_bgra(argb, out=out, threads=3) is out
    assert (out == argb[..., ::-1]).all()
    out[:] = 77
    assert (memory == 77).all()


def test_out_may_be_the_source(argb):
    expected = argb[..., ::-1].copy()
    argb_to_bgra(argb, out=argb)
    assert (argb == expected).all()


# --- Refusals ---


@pytest.mark.parametrize(
    "status, words, change",
    [
        ("UNKNOWN_FORMAT", "no such pixel format: 'v211'", dict(dst_format="v211")),
        ("UNKNOWN_COLORSPACE", "no such colourspace: 'r709'", dict(src_colorspace="r709")),
        ("NO_CONVERSION", "no row leads from A04l to BGRA", dict(src=bytes(520), src_format="A04l")),
        ("EMPTY_PICTURE", "has no pixels", dict(width=0)),
        ("BUFFER_TOO_SMALL", "the source needs 260 bytes and has 259", dict(src=bytes(259))),
        ("ROW_BYTES_TOO_SMALL", "51 bytes apart", dict(src=bytes(260), src_row_bytes=51)),
        ("TOO_LARGE", "too large", dict(width=2**31)),
        ("BAD_THREADS", "the number of threads is 0", dict(threads=0)),
    ],
)
def test_the_library_refuses_with_its_words(argb, status, words, change):
    out = np.zeros_like(argb)
    given = dict(src=argb, src_format="ARGB", dst_format="BGRA", width=WIDTH, height=HEIGHT, out=out)
    with pytest.raises(kestrix.Error, match=words) as error:
        kestrix.convert(**(given | change))
    assert error.value.status is kestrix.Status[status]
    assert not out.any()


def test_overlaps_are_refused():
    memory = random_bytes(HEIGHT + 1, WIDTH, 4)
    with pytest.raises(kestrix.Error, match="overlap"):
        argb_to_bgra(memory[1:], out=memory[:-1])


@pytest.mark.parametrize(
    "words, change",
    [
        ("4 rows and the picture 5", dict(src=np.zeros((4, WIDTH, 4), np.uint8))),
        ("has 48 bytes and the picture's 52", dict(src=np.zeros((5, 12, 4), np.uint8))),
        ("has 56 bytes and the picture's 52", dict(src=np.zeros((5, 14, 4), np.uint8))),
        ("<f4; ARGB has uint8", dict(src=np.zeros((5, WIDTH), np.float32))),
        (">u4", dict(out=np.zeros((5, WIDTH), "<u4"), dst_format="r210", src_colorspace="709")),
        ("strides tell", dict(src_row_bytes=52)),
        ("can't be written", dict(out=np.broadcast_to(np.uint8(0), (5, WIDTH, 4)))),
        ("out has gaps", dict(out=np.zeros((5, WIDTH, 8), np.uint8)[..., ::2])),
        ("width is -1", dict(width=-1)),
        ("height is 4294967301", dict(height=2**32 + HEIGHT)),
        ("src_row_bytes is", dict(src=bytes(260), src_row_bytes=2**64 + 52)),
    ],
)
def test_arrays_that_are_not_the_picture_are_refused(argb, words, change):
    given = dict(src=argb, src_format="ARGB", dst_format="BGRA", width=WIDTH, height=HEIGHT)
    with pytest.raises(ValueError, match=words):
        kestrix.convert(**(given | change))


def test_other_types_are_refused(argb):
    for change in dict(src=[1, 2]), dict(out=bytearray(260)), dict(width=1.5):
        given = dict(src=argb, src_format="ARGB", dst_format="BGRA", width=WIDTH, height=HEIGHT)
        with pytest.raises(TypeError):
            kestrix.convert(**(given | change))


# --- Threads, lists, command ---


def test_other_threads_run_during_a_conversion():
    """No thread gives the GIL up by itself here, so the main thread runs only if a call releases it."""
    source = np.zeros((4096, 4096, 4), np.uint8)
    out = np.empty_like(source)
    begun, ended = threading.Event(), threading.Event()

    def work():
        begun.set()
        kestrix.convert(source, "BGRA", "BGRA", 4096, 4096, src_colorspace="2020",
                        dst_colorspace="709", out=out)
        ended.set()

    interval = sys.getswitchinterval()
    sys.setswitchinterval(1000)
    try:
        thread = threading.Thread(target=work)
        thread.start()
        begun.wait()
        ran = not ended.is_set()
        thread.join()
    finally:
        sys.setswitchinterval(interval)
    assert ran


def test_lists_are_those_of_the_library():
    formats = {format.name: format for format in kestrix.formats()}
    assert len(formats) == 30 and formats["ARGB"].code == 32
    v210 = formats["v210"]
    assert (v210.components, v210.depth, v210.range, v210.alpha_range) == ("YCbCr", 10, "studio", None)
    assert v210.chroma == "4:2:2" and v210.code == int.from_bytes(b"v210", "big")
    assert [c.row for c in kestrix.conversions()] == list(range(364))
    for conversion in kestrix.conversions(v210, "BGRA"):
        assert (conversion.src_format, conversion.dst_format) == ("v210", "BGRA")
    assert {c.lines for c in kestrix.conversions(height=576)} == {None, 625}
    for width in 1, 6, 7, 1920:
        assert kestrix.row_bytes("v210", width) == -(-width // 6) * 16


def test_command_lists_formats_and_conversions():
    def listed(*arguments):
        command = [sys.executable, "-m", "kestrix", *arguments]
        return subprocess.run(command, capture_output=True, text=True)

    lines = listed().stdout.splitlines()
    assert len(lines) == 30 and "v210  10-bit 4:2:2 Y'CbCr" in lines[2]
    assert "v210:709   BGRA:709" in listed("v210").stdout.splitlines()
    refused = listed("v211")
    assert refused.returncode == 2 and "no such pixel format: 'v211'" in refused.stderr


def test_everything_public_has_a_text_and_hints():
    for name in kestrix.__all__:
        thing = getattr(kestrix, name)
        assert len(inspect.getdoc(thing)) > 40
        if inspect.isfunction(thing):
            hints = inspect.signature(thing)
            assert hints.return_annotation is not hints.empty
            assert all(p.annotation is not p.empty for p in hints.parameters.values())
