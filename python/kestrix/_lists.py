"""Formats and conversions as Python sees them."""

from __future__ import annotations

import dataclasses
import functools
import operator
from typing import Literal

from . import _library

_COMPONENTS = {1: "YCbCr", 2: "YCbCrA", 3: "RGB", 4: "RGBA"}
_RANGES = {1: "studio", 2: "full"}
_CHROMA = {422: "4:2:2"}
_COLORSPACES: dict[str | None, int] = {"601": 0, "709": 1, "2020": 2, None: 0x756E7370}

Colorspace = Literal["601", "709", "2020"]


@dataclasses.dataclass(frozen=True)
class Format:
    """A pixel format.

    Attributes:
        name: four characters, as "v210".
        code: the FourCC with its first character in the top byte; 32 for "ARGB".
        words: a few words for people, as "10-bit 4:2:2 Y'CbCr, studio range".
        components: "YCbCr", "YCbCrA", "RGB" or "RGBA".
        depth: bits of a sample: 8, 10, 12 or 16.
        range: "studio" or "full", of all samples but alpha. For n bits, full range runs from 0 to
            2^n - 1. Studio range has black at 16 x 2^(n-8) and white at 235 x 2^(n-8) (ITU-R
            BT.709-6, 3.4; ITU-R BT.601-7, 2.5.3).
        alpha_range: the range of alpha, or None if the format has none.
        chroma: "4:2:2", or None for RGB.
        group_pixels: pixels of a group; a row is a whole number of groups.
        group_bytes: bytes of a group.
    """

    name: str
    code: int
    words: str
    components: str
    depth: int
    range: str
    alpha_range: str | None
    chroma: str | None
    group_pixels: int
    group_bytes: int


@dataclasses.dataclass(frozen=True)
class Conversion:
    """A conversion: a row of the table.

    Attributes:
        row: its number in the table, from 0.
        src_format, dst_format: names of formats.
        src_colorspace, dst_colorspace: "601", "709" or "2020"; None if the conversion is the same in
            all colourspaces and changes none.
        lines: the line standard whose primaries Rec. 601 has here: 625 for pictures of 576 rows, 525
            for all others; None if the conversion does not depend on it.
        block: rows whose width is a multiple of it are converted fastest.
        least_width: rows narrower than this, in pixels, are converted too, but slower.
    """

    row: int
    src_format: str
    src_colorspace: str | None
    dst_format: str
    dst_colorspace: str | None
    lines: int | None
    block: int
    least_width: int


@functools.cache
def _formats_by_name() -> dict[str, Format]:
    found = [
        Format(
            name=info.name.decode(),
            code=info.code,
            words=info.words.decode(),
            components=_COMPONENTS[info.components],
            depth=info.depth,
            range=_RANGES[info.range],
            alpha_range=_RANGES.get(info.alpha_range),
            chroma=_CHROMA.get(info.chroma),
            group_pixels=info.group_pixels,
            group_bytes=info.group_bytes,
        )
        for info in _library.formats()
    ]
    return {format.name: format for format in found}


def find_format(format: str | Format) -> Format:
    if isinstance(format, Format):
        return format
    found = _formats_by_name().get(format)
    if found is None:
        raise _library.error(_library.Status.UNKNOWN_FORMAT, format)
    return found


def colorspace_code(name: str | None) -> int:
    if name not in _COLORSPACES:
        raise _library.error(_library.Status.UNKNOWN_COLORSPACE, name)
    return _COLORSPACES[name]


def integer(name: str, value: int, least: int = 0, most: int = 2**32 - 1) -> int:
    """Returns an integer that the C library has room for. ctypes would cut off its upper bits."""
    value = operator.index(value)
    if not least <= value <= most:
        raise ValueError(f"{name} is {value}, not from {least} to {most}")
    return value


def formats() -> list[Format]:
    """Returns the 30 pixel formats.

    >>> [format.name for format in formats() if format.depth == 12]
    ['v212', 'R12B', 'R12L', 'R12l', 'S12L']
    """
    return list(_formats_by_name().values())


def conversions(
    src_format: str | Format | None = None,
    dst_format: str | Format | None = None,
    *,
    height: int = 0,
) -> list[Conversion]:
    """Returns the conversions from a format, to a format, or from one to the other; without both,
    all 364.

    >>> [(c.src_colorspace, c.dst_colorspace) for c in conversions("v210", "BGRA")]
    [('601', '709'), ('2020', '709'), ('601', '601'), ('709', '709'), ('2020', '2020')]

    Args:
        src_format, dst_format: names of formats, or formats as formats() returns them.
        height: rows of the pictures, which only decide `lines`; 0 stands for any height but 576.

    Raises:
        Error: there is no such format.
        ValueError: the height is negative or too large.
    """
    src_code, dst_code = (
        None if format is None else find_format(format).code for format in (src_format, dst_format)
    )
    names = {format.code: format.name for format in formats()}
    colorspaces = {code: name for name, code in _COLORSPACES.items()}
    return [
        Conversion(
            row=info.row,
            src_format=names[info.src_format],
            src_colorspace=colorspaces[info.src_colorspace],
            dst_format=names[info.dst_format],
            dst_colorspace=colorspaces[info.dst_colorspace],
            lines=info.lines or None,
            block=info.block,
            least_width=info.least_width,
        )
        for info in _library.conversions(integer("height", height))
        if src_code in (None, info.src_format) and dst_code in (None, info.dst_format)
    ]


def row_bytes(format: str | Format, width: int) -> int:
    """Returns the bytes of a row of `width` pixels: ceil(width / group_pixels) x group_bytes.

    >>> row_bytes("v210", 1920)
    5120

    Raises:
        Error: there is no such format, the width is 0, or the row has more than 2147483647 bytes.
        ValueError: the width is negative or does not fit into 32 bits.
    """
    return _library.row_bytes(find_format(format).code, integer("width", width))
