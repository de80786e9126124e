"""Writes slides and slide libraries, in either byte order.

    slide = SlideWriter(320, 200)
    slide.color(1).vector((0, 0), (319, 199)).fill((10, 10), (50, 10), (30, 40))
    slide.bytes()
"""

import struct

MARK = b"AutoCAD Slide\r\n\x1a\0"
LIBRARY_MARK = b"AutoCAD Slide Library 1.0\r\n\x1a\0"


class SlideWriter:
    def __init__(self, width, height, aspect=None, big_endian=False):
        """The aspect ratio is the screen's width to its height; without it dots are square."""
        self.order = ">" if big_endian else "<"
        aspect = width / height if aspect is None else aspect
        self.header = MARK + bytes([86, 2]) + struct.pack(self.order + "HHI", width, height, round(aspect * 1e7))
        # Areas filled by hardware; the test value.
        self.header += struct.pack(self.order + "HH", 2, 0x1234)
        self.records = b""

    def words(self, *values):
        self.records += struct.pack(self.order + f"{len(values)}H", *(value & 0xFFFF for value in values))
        return self

    def word_of(self, kind, low):
        return self.words(kind << 8 | low & 0xFF)

    def color(self, number):
        return self.word_of(0xFF, number)

    def vector(self, start, end):
        """The start becomes the last point."""
        return self.words(*start, *end)

    def offset_vector(self, start, end):
        """Both from the last point, within a signed byte; the start becomes the last point."""
        self.word_of(0xFB, start[0])
        self.records += bytes(value & 0xFF for value in (start[1], *end))
        return self

    def common_endpoint(self, x, y):
        """From the last point; the end becomes the last point."""
        self.word_of(0xFE, x)
        self.records += bytes([y & 0xFF])
        return self

    def fill(self, *vertices):
        """Three to ten vertices. A negative y marks the records before the first and behind the last; readers that know
        the count pass over the latter."""
        self.words(0xFD00, len(vertices), -2)
        for x, y in vertices:
            self.words(0xFD00, x, y)
        return self.words(0xFD00, 0, -2)

    def end(self):
        return self.word_of(0xFC, 0)

    def bytes(self):
        return self.header + self.records


def library_bytes(slides):
    """A library of (name, bytes) pairs."""
    offset = 32 + 36 * len(slides) + 36
    directory, data = b"", b""
    for name, slide in slides:
        directory += name.encode("ascii").ljust(32, b"\0") + struct.pack("<I", offset + len(data))
        data += slide
    return LIBRARY_MARK.ljust(32, b"\0") + directory + bytes(36) + data
