#!/usr/bin/env python3
"""make_font_seeds.py

Writes the seed fonts into seeds/font beside this file; the tests of fonts use them too. Their glyphs are drawn here:
A is a triangle with a hole, B a box, C a box at half the size with the triangle upon it (put together from the other
two), Ж a box with round corners.
"""

import pathlib
import struct

FOLDER = pathlib.Path(__file__).resolve().parent / "seeds" / "font"
UNITS, CAPITAL = 1000, 700
# Contours of (x, y, whether it is on the curve).
TRIANGLE = [[(0, 0, 1), (300, 700, 1), (600, 0, 1)], [(200, 100, 1), (400, 100, 1), (300, 400, 1)]]
BOX = [[(100, 0, 1), (100, 700, 1), (500, 700, 1), (500, 0, 1)]]
ROUND = [[(0, 350, 1), (0, 700, 0), (350, 700, 1), (700, 700, 0), (700, 350, 1), (700, 0, 0), (350, 0, 1), (0, 0, 0)]]
CHARACTERS = {0x41: 1, 0x42: 2, 0x43: 3, 0x416: 4}
ADVANCES = [500, 700, 600, 800, 750]


def simple(contours):
    points = [point for contour in contours for point in contour]
    ends, count = [], -1
    for contour in contours:
        count += len(contour)
        ends.append(count)
    xs, ys = [p[0] for p in points], [p[1] for p in points]
    data = struct.pack(">hhhhh", len(contours), min(xs), min(ys), max(xs), max(ys))
    data += b"".join(struct.pack(">H", end) for end in ends) + struct.pack(">H", 0)
    data += bytes(p[2] for p in points)
    for axis in (0, 1):
        last = 0
        for p in points:
            data += struct.pack(">h", p[axis] - last)
            last = p[axis]
    return data + b"\0" * (-len(data) % 4)


def composite():
    data = struct.pack(">hhhhh", -1, 0, 0, 600, 1050)
    data += struct.pack(">HHhhh", 1 | 2 | 8 | 32, 2, 100, 0, 0x2000)  # the box at half its size, moved
    data += struct.pack(">HHbb", 2, 1, 0, 100)  # the triangle, moved up
    return data + b"\0" * (-len(data) % 4)


def segments(characters=CHARACTERS):
    codes = sorted(characters)
    ranges = [(c, c, (characters[c] - c) & 0xFFFF) for c in codes if c < 0x10000] + [(0xFFFF, 0xFFFF, 1)]
    n = len(ranges)
    body = struct.pack(">HHHH", 2 * n, 0, 0, 0)
    body += b"".join(struct.pack(">H", r[1]) for r in ranges) + struct.pack(">H", 0)
    body += b"".join(struct.pack(">H", r[0]) for r in ranges) + b"".join(struct.pack(">H", r[2]) for r in ranges)
    body += struct.pack(">H", 0) * n
    return struct.pack(">HHH", 4, 6 + len(body), 0) + body


def groups():
    body = b"".join(struct.pack(">III", c, c, CHARACTERS[c]) for c in sorted(CHARACTERS))
    return struct.pack(">HHIII", 12, 0, 16 + len(body), 0, len(CHARACTERS)) + body


def cmap(tables):
    data = struct.pack(">HH", 0, len(tables))
    place = 4 + 8 * len(tables)
    for encoding, table in tables:
        data += struct.pack(">HHI", 3, encoding, place)
        place += len(table)
    return data + b"".join(table for _, table in tables)


def names(family, style):
    texts = {1: family, 2: style, 4: f"{family} {style}"}
    records, pool = b"", b""
    for number, text in texts.items():
        raw = text.encode("utf-16-be")
        records += struct.pack(">HHHHHH", 3, 1, 0x409, number, len(raw), len(pool))
        pool += raw
    return struct.pack(">HHH", 0, len(texts), 6 + len(records)) + records + pool


def common(family, bold, cmap_tables):
    head = struct.pack(">IIIIHHQQhhhhHHhhh", 0x10000, 0, 0, 0x5F0F3CF5, 0, UNITS, 0, 0, 0, 0, 700, 1050, 1 if bold else 0, 8, 2, 1, 0)
    hhea = struct.pack(">IhhhHhhhhhhhhhhhH", 0x10000, 800, -200, 0, 800, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, len(ADVANCES))
    os2 = struct.pack(">HhHHH", 2, 600, 700 if bold else 400, 5, 0) + bytes(52) + struct.pack(">H", 0x20 if bold else 0x40)
    os2 = os2.ljust(88, b"\0") + struct.pack(">hHHH", CAPITAL, 0, 0, 0)
    return {
        "head": head,
        "hhea": hhea,
        "hmtx": b"".join(struct.pack(">Hh", a, 0) for a in ADVANCES),
        "maxp": struct.pack(">IH", 0x10000, len(ADVANCES)) + bytes(26),
        "OS/2": os2,
        "name": names(family, "Bold" if bold else "Regular"),
        "cmap": cmap(cmap_tables),
    }


def outlines():
    glyphs = [simple(BOX), simple(TRIANGLE), simple(BOX), composite(), simple(ROUND)]
    places, data = [0], b""
    for glyph in glyphs:
        data += glyph
        places.append(len(data))
    return {"glyf": data, "loca": b"".join(struct.pack(">I", place) for place in places)}


def index(items):
    if not items:
        return struct.pack(">H", 0)
    places = [1]
    for item in items:
        places.append(places[-1] + len(item))
    return struct.pack(">HB", len(items), 2) + b"".join(struct.pack(">H", p) for p in places) + b"".join(items)


def number(value):
    return struct.pack(">Bh", 28, value)


def charstring(contours):
    code, x, y = b"", 0, 0
    for contour in contours:
        for i, (px, py, _) in enumerate(contour):
            code += number(px - x) + number(py - y) + bytes([21 if i == 0 else 5])
            x, y = px, py
    return code + bytes([14])


def compact():
    # The last one calls a subroutine, and has a curve.
    curve = number(100) + bytes([22]) + number(100) * 6 + bytes([8]) + number(-107) + bytes([10, 14])
    glyphs = index([charstring(c) for c in (BOX, TRIANGLE, BOX, BOX)] + [curve])
    subrs = index([bytes([11])])
    head = bytes([1, 0, 4, 2])
    name = index([b"Seed"])
    private_size = 4  # the place of the subroutines, behind it

    def top(charstrings, private):
        return index([number(charstrings) + bytes([17]) + number(private_size) + number(private) + bytes([18])])

    start = len(head + name + top(0, 0) + index([]) + subrs)
    data = head + name + top(start, start + len(glyphs)) + index([]) + subrs + glyphs
    return {"CFF ": data + number(private_size) + bytes([19]) + subrs}


def font(tables, kind=b"\0\1\0\0", base=0):
    count = len(tables)
    directory, body = kind + struct.pack(">HHHH", count, 0, 0, 0), b""
    place = base + 12 + 16 * count
    for tag, data in sorted(tables.items()):
        directory += tag.encode() + struct.pack(">III", 0, place + len(body), len(data))
        body += data + b"\0" * (-len(data) % 4)
    return directory + body


def collection():
    fonts, places, place = b"", [], 20
    for family in ("Seed One", "Seed Two"):
        places.append(place)
        data = font({**common(family, False, [(1, segments())]), **outlines()}, base=place)
        fonts += data
        place += len(data)
    return b"ttcf" + struct.pack(">III", 0x10000, 2, places[0]) + struct.pack(">I", places[1]) + fonts


def main():
    FOLDER.mkdir(parents=True, exist_ok=True)
    both = [(1, segments()), (10, groups())]
    (FOLDER / "seed.ttf").write_bytes(font({**common("Seed", False, both), **outlines()}))
    (FOLDER / "seed_bold.ttf").write_bytes(font({**common("Seed", True, [(1, segments())]), **outlines()}))
    (FOLDER / "compact.otf").write_bytes(font({**common("Seed Compact", False, [(1, segments({0x41: 1, 0x42: 2}))]), **compact()}, b"OTTO"))
    (FOLDER / "two.ttc").write_bytes(collection())


if __name__ == "__main__":
    main()
