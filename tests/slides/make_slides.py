#!/usr/bin/env python3
"""make_slides.py

Writes the slides and libraries beside this file, which the script cases show, and the fuzzers' seeds.
"""

import pathlib
import struct

from slide_writer import SlideWriter, library_bytes

HERE = pathlib.Path(__file__).resolve().parent
SEEDS = HERE.parent.parent / "fuzz" / "seeds"


def chair(big_endian=False, width=160, height=120, aspect=None):
    """Every kind of record."""
    slide = SlideWriter(width, height, aspect, big_endian)
    # In colour 0 nothing is drawn.
    slide.color(0).fill((0, 0), (30, 0), (0, 30)).vector((0, 60), (159, 60))
    slide.color(1).vector((0, 0), (width - 1, height - 1))
    slide.color(3).fill((20, 20), (70, 30), (50, 70))
    slide.color(5).vector((80, 60), (150, 10)).common_endpoint(20, 20).common_endpoint(-10, 30).common_endpoint(0, -100)
    slide.color(2).offset_vector((5, 5), (25, 30)).offset_vector((-40, 20), (-90, 20))
    slide.color(6).fill(*((110 + x, 70 + y) for x, y in (
        (0, 10), (5, 3), (15, 0), (25, 3), (30, 10), (30, 20), (25, 27), (15, 30), (5, 27), (0, 20))))
    return slide.color(7).vector((0, 0), (width, 0)).vector((0, 0), (0, height)).end()


def main():
    damaged = chair()
    damaged.records = damaged.records[:-2] + struct.pack("<H", 0x9000)
    slides = {
        "chair.sld": chair().bytes(),
        "chair_big_endian.sld": chair(big_endian=True).bytes(),
        "sheet.sld": chair().bytes(),
        "damaged.sld": damaged.bytes(),
        "no_slide.sld": b"AutoCAD Slide, or so it says\r\n\x1a\0 and goes on\n",
        "room.slb": library_bytes([("CHAIR", chair().bytes()), ("TABLE", chair(True).bytes())]),
    }
    for name, content in slides.items():
        (HERE / name).write_bytes(content)

    seeds = {
        "slide": {name: content for name, content in slides.items() if name.endswith(".sld") and name != "sheet.sld"},
        "library": {"room.slb": slides["room.slb"], "empty.slb": library_bytes([]),
                    "no_end.slb": library_bytes([("A" * 32, b""), ("", b"x")])[:100]},
    }
    for folder, files in seeds.items():
        (SEEDS / folder).mkdir(parents=True, exist_ok=True)
        for name, content in files.items():
            (SEEDS / folder / name).write_bytes(content)


if __name__ == "__main__":
    main()
