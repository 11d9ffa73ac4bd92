"""Conversions between 30 packed pixel formats of professional video, exact to the bit.

A frame of v210 becomes an array that a picture can be made of:

    >>> import kestrix, numpy as np
    >>> frame = np.zeros(kestrix.row_bytes("v210", 1920) * 1080, np.uint8)
    >>> picture = kestrix.convert(frame, "v210", "BGRA", 1920, 1080, src_colorspace="709")
    >>> picture.shape, picture.dtype
    ((1080, 1920, 4), dtype('uint8'))

- convert() converts a picture.
- formats() lists the formats, conversions() the conversions, and row_bytes() tells how long a row is.
- Error is raised if the library refuses something, with the words of the library.

Formats have names of four characters, and capitals matter: "r210" is studio range, "R210" full.
`python3 -m kestrix` lists them. Colourspaces are "601" (ITU-R BT.601-7), "709" (ITU-R BT.709-6) and
"2020" (ITU-R BT.2020-2).

Any number of threads may call any function at the same time. The module uses the C library
libKestrixPixelConversion by ctypes.
"""

from ._convert import convert
from ._library import Error, Status, version
from ._lists import Conversion, Format, conversions, formats, row_bytes

__all__ = ["Conversion", "Error", "Format", "Status", "conversions", "convert", "formats", "row_bytes"]
__version__ = version()

# Tracebacks and help() say kestrix.Error.
for _name in __all__:
    globals()[_name].__module__ = __name__
