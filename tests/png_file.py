"""PNG files: rows of pixels, each a tuple of red, green and blue, and of what it covers where that is given."""

import struct
import zlib

HEAD = b"\x89PNG\r\n\x1a\n"


def chunk(name, content):
    return struct.pack(">I", len(content)) + name + content + struct.pack(">I", zlib.crc32(name + content))


def read(path):
    """Without interlacing and filters, as the host writes it."""
    data = path.read_bytes()
    width, height = struct.unpack(">II", data[16:24])
    parts, at = b"", 8
    while at < len(data):
        length, kind = struct.unpack(">I4s", data[at:at + 8])
        if kind == b"IDAT":
            parts += data[at + 8:at + 8 + length]
        at += 12 + length
    raw = zlib.decompress(parts)
    rows = [raw[y * (3 * width + 1):(y + 1) * (3 * width + 1)] for y in range(height)]
    assert all(row[0] == 0 for row in rows), "a filtered picture"
    return [[tuple(row[1 + 3 * x:4 + 3 * x]) for x in range(width)] for row in rows]


def written(rows, size=None):
    """The bytes of a file; `size` is what it says of itself, where that is not true."""
    width, height = size or (len(rows[0]), len(rows))
    kind = 6 if len(rows[0][0]) == 4 else 2
    packed = zlib.compress(b"".join(b"\0" + bytes(sum(row, ())) for row in rows))
    return HEAD + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, kind, 0, 0, 0)) + chunk(b"IDAT", packed) + chunk(b"IEND", b"")
