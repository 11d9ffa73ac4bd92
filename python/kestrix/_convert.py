"""Converts pictures that are in arrays and buffers."""

from __future__ import annotations

import ctypes
import math
import mmap
from typing import Any, Protocol, Union

import numpy as np
import numpy.typing as npt

from . import _library
from ._lists import Colorspace, Format, colorspace_code, find_format, integer, row_bytes

# The formats with a pixel in a word of 32 bits, and the order of its bytes.
_WORDS = {
    "r210": ">u4",
    "R210": ">u4",
    "R10l": "<u4",
    "R10L": "<u4",
    "R10b": ">u4",
    "R10B": ">u4",
    "R10A": ">u4",
}

Array = npt.NDArray[Any]


class HasArray(Protocol):
    """An object that numpy reads, as pictures of PIL."""

    @property
    def __array_interface__(self) -> dict[str, Any]: ...


Source = Union[Array, HasArray, bytes, bytearray, memoryview, mmap.mmap]


def _empty(format: Format, width: int, height: int) -> Array:
    """An array of the shape that people expect of a format."""
    if format.name in _WORDS:
        return np.empty((height, width), _WORDS[format.name])
    if format.depth == 8 and format.chroma is None:
        return np.empty((height, width, format.group_bytes), np.uint8)
    return np.empty((height, row_bytes(format, width)), np.uint8)


def _has_gaps(array: Array) -> bool:
    """Whether there are gaps between the elements of a row, which is all axes but the first."""
    row = array if array.ndim == 1 else array[:1]
    return not row.flags.c_contiguous


def _describe(
    name: str,
    array: Array,
    format: Format,
    colorspace: str | None,
    width: int,
    height: int,
    given_row_bytes: int | None = None,
) -> _library.Picture:
    """Describes the picture in an array whose rows have no gaps between their elements."""
    if array.dtype not in (np.uint8, _WORDS.get(format.name, np.uint8)):
        words = f" or {_WORDS[format.name]}" if format.name in _WORDS else ""
        raise ValueError(
            f"the elements of the {name} are {array.dtype.str}; {format.name} has uint8{words}"
        )
    needed = row_bytes(format, width)
    address = array.__array_interface__["data"][0]
    if array.ndim == 1:
        step = needed if given_row_bytes is None else given_row_bytes
        size = array.nbytes
    else:
        if given_row_bytes is not None:
            raise ValueError(f"the {name} has {array.ndim} axes; its strides tell the bytes of a row")
        if array.shape[0] != height:
            raise ValueError(f"the {name} has {array.shape[0]} rows and the picture {height}")
        length = math.prod(array.shape[1:]) * array.itemsize
        if length < needed or (length > needed and array.ndim > 2):
            raise ValueError(f"a row of the {name} has {length} bytes and the picture's {needed}")
        step = array.strides[0] if height > 1 else length
        size = (height - 1) * abs(step) + length if height > 0 else 0
        if step < 0:
            address += (height - 1) * step
    return _library.Picture(
        ctypes.sizeof(_library.Picture),
        format.code,
        colorspace_code(colorspace),
        width,
        height,
        step,
        address,
        size,
    )


def convert(
    src: Source,
    src_format: str | Format,
    dst_format: str | Format,
    width: int,
    height: int,
    *,
    src_colorspace: Colorspace | None = None,
    dst_colorspace: Colorspace | None = None,
    src_row_bytes: int | None = None,
    out: Array | None = None,
    threads: int = 1,
) -> Array:
    """Converts a picture to another format, and returns it as an array.

    >>> import kestrix
    >>> grey = bytes([128] * kestrix.row_bytes("2vuy", 2))
    >>> kestrix.convert(grey, "2vuy", "RGBA", 2, 1, src_colorspace="709")
    array([[[130, 130, 130, 255],
            [130, 130, 130, 255]]], dtype=uint8)

    The result has the shape that people expect:

    - 8-bit RGB: (height, width, 4) of uint8, and (height, width, 3) for "RGB3". The components are
      in the order of the name: [..., 0] is blue in "BGRA".
    - 10-bit RGB with a pixel in 32 bits, as "r210": (height, width) of uint32, in the byte order of
      the format. The array's values are right; its memory is what goes to a file.
    - All others: (height, row_bytes(dst_format, width)) of uint8.

    The call releases the GIL. Meanwhile, other threads must not write to `src`, or use `out`.

    Args:
        src: the picture. Either an array whose first axis is the rows, with any stride from row to
            row: rows that run upwards, as frame[::-1], and rows that are parts of longer ones are
            read where they are. Or an array of one axis or another buffer (bytes, mmap, ...), whose
            rows are `src_row_bytes` apart. Elements are uint8, or the words that a result has. If
            there are gaps between the elements of a row, the array is copied first.
        src_format, dst_format: names of formats, as "v210", or formats as formats() returns them.
        width, height: pixels of a row, and rows.
        src_colorspace: "601", "709" or "2020"; None if none is stated, which some conversions take.
        dst_colorspace: the same; None means that of the source.
        src_row_bytes: bytes from a row to the one below it, in a buffer or an array of one axis.
            If it is negative, the buffer begins with the bottom row. Without it, the rows have no
            gaps between them.
        out: an array that gets the picture, and is returned; none is allocated then. Its rows and
            elements may be as those of `src`, but without gaps between elements. It may be the
            same memory as `src` if a group of pixels has the same number of bytes in both formats.
            The bytes between its rows stay as they are.
        threads: the most threads that share the work, of which the calling one is one.

    Raises:
        Error: the library refuses the pictures, with the status and the words of the library. `out`
            is unchanged then.
        ValueError: an array does not have the rows, or the elements, of its picture.
        TypeError: `src` is no array or buffer, or `out` is no array.
    """
    src_format, dst_format = find_format(src_format), find_format(dst_format)
    width, height = integer("width", width), integer("height", height)
    threads = integer("threads", threads)
    if src_row_bytes is not None:
        src_row_bytes = integer("src_row_bytes", src_row_bytes, -(2**63), 2**63 - 1)
    if hasattr(src, "__array_interface__"):
        source = np.asarray(src)
        if source.ndim == 0:
            raise ValueError("the source has no axes")
        if _has_gaps(source):
            source = np.ascontiguousarray(source)
    else:
        source = np.frombuffer(src, np.uint8)
    picture = _describe(
        "source", source, src_format, src_colorspace, width, height, given_row_bytes=src_row_bytes
    )

    result = _empty(dst_format, width, height) if out is None else out
    if not isinstance(result, np.ndarray):
        raise TypeError(f"out is a {type(out).__name__}, not an array")
    if not result.flags.writeable:
        raise ValueError("out can't be written")
    if result.ndim == 0 or _has_gaps(result):
        raise ValueError("out has gaps between the elements of a row")
    _library.convert(
        picture, _describe("destination", result, dst_format, dst_colorspace, width, height), threads
    )
    return result
