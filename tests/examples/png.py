"""PNG files of 8 bits a sample, as much of the format as the tests need (ISO/IEC 15948)."""

import struct
import zlib

SIGNATURE = b"\x89PNG\r\n\x1a\n"


def _chunk(kind, data):
    checked = kind + data
    return struct.pack(">I", len(data)) + checked + struct.pack(">I", zlib.crc32(checked))


def write(path, rows):
    """Writes rows of (r, g, b, a) pixels."""
    lines = b"".join(b"\0" + b"".join(bytes(pixel) for pixel in row) for row in rows)
    header = struct.pack(">IIBBBBB", len(rows[0]), len(rows), 8, 6, 0, 0, 0)
    with open(path, "wb") as file:
        file.write(SIGNATURE + _chunk(b"IHDR", header) +
                   _chunk(b"IDAT", zlib.compress(lines)) + _chunk(b"IEND", b""))


def _nearest(left, above, corner):
    estimate = left + above - corner
    return min((left, above, corner), key=lambda value: abs(estimate - value))


def read(path):
    """Reads an RGB file as rows of (r, g, b) pixels."""
    with open(path, "rb") as file:
        data = file.read()
    assert data.startswith(SIGNATURE)
    compressed = b""
    at = len(SIGNATURE)
    while at < len(data):
        length, kind = struct.unpack_from(">I4s", data, at)
        content = data[at + 8:at + 8 + length]
        if kind == b"IHDR":
            width, height, depth, colour, _, _, interlaced = struct.unpack(">IIBBBBB", content)
            assert (depth, colour, interlaced) == (8, 2, 0), "not 8-bit RGB"
        elif kind == b"IDAT":
            compressed += content
        at += length + 12

    lines = zlib.decompress(compressed)
    above = bytearray(3 * width)
    rows = []
    for y in range(height):
        start = y * (3 * width + 1)
        kind = lines[start]
        line = bytearray(lines[start + 1:start + 1 + 3 * width])
        for i, value in enumerate(line):
            left = line[i - 3] if i >= 3 else 0
            corner = above[i - 3] if i >= 3 else 0
            guess = (0, left, above[i], (left + above[i]) // 2, _nearest(left, above[i], corner))
            line[i] = (value + guess[kind]) & 255
        rows.append([tuple(line[x:x + 3]) for x in range(0, 3 * width, 3)])
        above = line
    return rows
