#!/usr/bin/env python3
"""compare_pictures.py --program TORVELHOST [--emulator COMMAND ...]

Shows slides with VSlide and compares the pictures, pixel by pixel, with those that netpbm's sldtoppm makes of the same
slides. The two draw lines by different rules, so each pixel is held against its neighbourhood in the other picture.
"""

import argparse
import pathlib
import subprocess
import sys
import tempfile

from make_slides import chair

SHADE = 96  # how far a smoothed edge may fall short, of 255
FAINT = 90  # what a line spread over two pixels has at least, of 255


def read_ppm(content):
    fields, at = [], 0
    while len(fields) < 4:
        end = min(i for i in (content.find(b"\n", at), content.find(b" ", at)) if i >= 0)
        fields.append(content[at:end])
        at = end + 1
    assert fields[0] == b"P6" and fields[3] == b"255", fields
    width, height = int(fields[1]), int(fields[2])
    return width, height, content[at:]


def ranges(picture):
    """For every pixel and channel the smallest and the largest value around it, as two rows of rows."""
    width, height, pixels = picture
    rows = [pixels[3 * width * y:3 * width * (y + 1)] for y in range(height)]

    def spread(choose):
        wide = [bytes(map(choose, row, row[:3] + row[:-3], row[3:] + row[-3:])) for row in rows]
        return [bytes(map(choose, wide[y], wide[max(y - 1, 0)], wide[min(y + 1, height - 1)])) for y in range(height)]

    return rows, spread(min), spread(max)


def compare(ours, theirs, what):
    """Their picture has a row and a column more: its last dot is one behind the screen's size."""
    width, height = ours[0], ours[1]
    assert abs(theirs[0] - width) <= 1 and abs(theirs[1] - height) <= 1, (ours[:2], theirs[:2])
    our_rows, our_low, our_high = ranges(ours)
    their_rows, their_low, their_high = ranges(theirs)
    faults = []
    for y in range(min(height, theirs[1])):
        for i in range(3 * min(width, theirs[0])):
            mine, other = our_rows[y][i], their_rows[y][i]
            if not their_low[y][i] - SHADE <= mine <= their_high[y][i] + SHADE:
                faults.append((i // 3, y, "drawn", mine, other))
            elif not our_low[y][i] - (255 - FAINT) <= other <= our_high[y][i] + (255 - FAINT):
                faults.append((i // 3, y, "not drawn", mine, other))
    if faults:
        print(f"{what}: {len(faults)} values differ, the first at {faults[:5]}", file=sys.stderr)
    drawn = sum(1 for value in ours[2] if value)
    if drawn < 1000:
        print(f"{what}: hardly anything is drawn", file=sys.stderr)
    return not faults and drawn >= 1000


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--emulator", default="")
    arguments = parser.parse_args()
    program = [*filter(None, arguments.emulator.split(";")), arguments.program]

    cases = {
        "little endian": (chair(), (160, 120), []),
        "big endian": (chair(big_endian=True), (160, 120), []),
        "dots that are not square": (chair(aspect=2.0), (240, 120), ["-adjust"]),
    }
    passed = True
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for what, (slide, (width, height), options) in cases.items():
            (folder / "shown.sld").write_bytes(slide.bytes())
            subprocess.run([*program, "-q", "--profile", "profile", "-c", "VSlide|shown", "-p", "shown.png", "--size",
                            f"{width}x{height}"], cwd=folder, check=True, stderr=subprocess.DEVNULL)
            ours = subprocess.run(["pngtopnm", "shown.png"], cwd=folder, check=True, capture_output=True).stdout
            theirs = subprocess.run(["sldtoppm", *options, "shown.sld"], cwd=folder, check=True, capture_output=True).stdout
            passed = compare(read_ppm(ours), read_ppm(theirs), what) and passed
    sys.exit(not passed)


main()
