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
    """Reads an RGB or RGBA file as rows of (r, g, b) or (r, g, b, a) pixels."""
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
            assert (depth, interlaced) == (8, 0), "not 8 bits a sample"
            size = {2: 3, 6: 4}[colour]  # samples a pixel
        elif kind == b"IDAT":
            compressed += content
        at += length + 12

    lines = zlib.decompress(compressed)
    above = bytearray(size * width)
    rows = []
    for y in range(height):
        start = y * (size * width + 1)
        kind = lines[start]
        line = bytearray(lines[start + 1:start + 1 + size * width])
        for i, value in enumerate(line):
            left = line[i - size] if i >= size else 0
            corner = above[i - size] if i >= size else 0
            guess = (0, left, above[i], (left + above[i]) // 2, _nearest(left, above[i], corner))
            line[i] = (value + guess[kind]) & 255
        rows.append([tuple(line[x:x + size]) for x in range(0, size * width, size)])
        above = line
    return rows
