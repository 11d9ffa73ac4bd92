"""The C library: its functions and structs, as KestrixPixelConversion.h has them."""

import ctypes
import enum


class Status(enum.IntEnum):
    """What the library answers. The values never change."""

    OK = 0
    NULL_POINTER = 1
    BAD_STRUCT_SIZE = 2
    BAD_FLAGS = 3
    BAD_INDEX = 4
    UNKNOWN_FORMAT = 5
    UNKNOWN_COLORSPACE = 6
    NO_CONVERSION = 7
    EMPTY_PICTURE = 8
    SIZES_DIFFER = 9
    TOO_LARGE = 10
    ROW_BYTES_TOO_SMALL = 11
    BUFFER_TOO_SMALL = 12
    OVERLAP = 13
    BAD_ROWS = 14
    BAD_THREADS = 15


class Error(ValueError):
    """The library refuses what it was given. The text is one line of the library, in English.

    Attributes:
        status: the Status that the library returned.
    """

    def __init__(self, status: Status, words: str) -> None:
        super().__init__(words)
        self.status = status


class FormatInfo(ctypes.Structure):
    _fields_ = [
        ("struct_size", ctypes.c_size_t),
        ("code", ctypes.c_uint32),
        ("components", ctypes.c_uint32),
        ("depth", ctypes.c_uint32),
        ("range", ctypes.c_uint32),
        ("alpha_range", ctypes.c_uint32),
        ("chroma", ctypes.c_uint32),
        ("group_pixels", ctypes.c_uint32),
        ("group_bytes", ctypes.c_uint32),
        ("name", ctypes.c_char_p),
        ("words", ctypes.c_char_p),
    ]


class ConversionInfo(ctypes.Structure):
    _fields_ = [
        ("struct_size", ctypes.c_size_t),
        ("row", ctypes.c_uint32),
        ("src_format", ctypes.c_uint32),
        ("src_colorspace", ctypes.c_uint32),
        ("dst_format", ctypes.c_uint32),
        ("dst_colorspace", ctypes.c_uint32),
        ("lines", ctypes.c_uint32),
        ("block", ctypes.c_uint32),
        ("least_width", ctypes.c_uint32),
    ]


class Picture(ctypes.Structure):
    _fields_ = [
        ("struct_size", ctypes.c_size_t),
        ("format", ctypes.c_uint32),
        ("colorspace", ctypes.c_uint32),
        ("width", ctypes.c_uint32),
        ("height", ctypes.c_uint32),
        ("row_bytes", ctypes.c_ssize_t),
        ("bytes", ctypes.c_void_p),
        ("size", ctypes.c_size_t),
    ]


_FUNCTIONS = {
    "kestrix_version": (ctypes.c_char_p, []),
    "kestrix_status_words": (ctypes.c_char_p, [ctypes.c_int]),
    "kestrix_format_count": (ctypes.c_size_t, []),
    "kestrix_format_at": (ctypes.c_int, [ctypes.c_size_t, ctypes.POINTER(FormatInfo)]),
    "kestrix_row_bytes": (
        ctypes.c_int,
        [ctypes.c_uint32, ctypes.c_uint32, ctypes.POINTER(ctypes.c_size_t)],
    ),
    "kestrix_conversion_count": (ctypes.c_size_t, []),
    "kestrix_conversion_at": (
        ctypes.c_int,
        [ctypes.c_size_t, ctypes.c_uint32, ctypes.POINTER(ConversionInfo)],
    ),
    "kestrix_convert_by_threads": (
        ctypes.c_int,
        [ctypes.POINTER(Picture), ctypes.POINTER(Picture), ctypes.c_uint32, ctypes.c_uint32],
    ),
    "kestrix_check": (
        ctypes.c_int,
        [
            ctypes.POINTER(Picture),
            ctypes.POINTER(Picture),
            ctypes.c_uint32,
            ctypes.c_char_p,
            ctypes.c_size_t,
        ],
    ),
}
_WORDS_SIZE = 256
_NAME = "libKestrixPixelConversion.so.1"


def _load() -> ctypes.CDLL:
    try:
        loaded = ctypes.CDLL(_NAME)  # a CDLL releases the GIL during each call
    except OSError as error:
        raise ImportError(f"kestrix needs the library {_NAME}: {error}") from None
    for name, (result, arguments) in _FUNCTIONS.items():
        function = getattr(loaded, name)
        function.restype = result
        function.argtypes = arguments
    return loaded


_library = _load()


def version() -> str:
    running: bytes = _library.kestrix_version()
    return running.decode()


def error(status: int, about: object = None) -> Error:
    """Returns the error of a status, with what it is about."""
    words = _library.kestrix_status_words(status).decode()
    return Error(Status(status), words if about is None else f"{words}: {about!r}")


def check(status: int) -> None:
    if status != Status.OK:
        raise error(status)


def formats() -> list[FormatInfo]:
    infos = [FormatInfo(ctypes.sizeof(FormatInfo)) for _ in range(_library.kestrix_format_count())]
    for index, info in enumerate(infos):
        check(_library.kestrix_format_at(index, info))
    return infos


def conversions(height: int) -> list[ConversionInfo]:
    infos = [
        ConversionInfo(ctypes.sizeof(ConversionInfo))
        for _ in range(_library.kestrix_conversion_count())
    ]
    for index, info in enumerate(infos):
        check(_library.kestrix_conversion_at(index, height, info))
    return infos


def row_bytes(code: int, width: int) -> int:
    length = ctypes.c_size_t()
    check(_library.kestrix_row_bytes(code, width, length))
    return length.value


def convert(src: Picture, dst: Picture, threads: int) -> None:
    status = _library.kestrix_convert_by_threads(src, dst, threads, 0)
    if status != Status.OK:
        words = ctypes.create_string_buffer(_WORDS_SIZE)
        if _library.kestrix_check(src, dst, 0, words, _WORDS_SIZE) != status:
            raise error(status)
        raise Error(Status(status), words.value.decode())
