#!/usr/bin/env python3
"""plots_test.py --program TORVELHOST [--emulator WORDS]: a drawing shows the same shapes in the same places after Burst.

Colours and widths of lines are not compared: what took them from its reference has none to take them from any more.
"""

import argparse
import collections
import pathlib
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "plot"))
import compare_plots  # noqa: E402
import plots  # noqa: E402

# Drawing, window to plot, references that stay.
CASES = [
    ("plan.dxf", "-160,-70|145,155", {"KEEP": 1, "PART": 3}),
    ("r12.dxf", "-160,-70|145,155", {"PART": 3, "WIDE": 2}),
    ("../attsync/fields.dxf", "-50,-50|250,175", {}),
    ("carried.dxf", "-60,-30|120,105", {"*D1": 6}),
    ("multi_line.dxf", "-50,-50|150,100", {}),
]


def plot(program, drawing, commands, folder, name):
    svg = folder / (name + ".svg")
    subprocess.run(program + ["-q", "--profile", str(folder / "profile.ini"), "--size", "3000x2250", "-c", commands, "-p", str(svg),
                              "-o", str(folder / (name + ".dxf")), str(drawing)], check=True, capture_output=True)
    picture = plots.read_plot(svg)
    for shape in picture.shapes:
        if not shape.width:
            shape.contours = outline(shape.contours)
        shape.color, shape.width = "black", 1.0
    return picture


def outline(contours):
    """The edges of areas without those that two pieces share: how a wide arc is cut into pieces does not count."""
    edges = collections.Counter()
    for contour in contours:
        for ends in zip(contour, contour[1:] + contour[:1]):
            edges[tuple(sorted(ends))] += 1
    return [list(edge) for edge, times in edges.items() if times == 1]


def references(path):
    import dxf_groups
    found = {}
    for record in dxf_groups.read(path).entities("INSERT"):
        found[record.text(2)] = found.get(record.text(2), 0) + 1
    return found


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--emulator", default="")
    arguments = parser.parse_args()
    program = [word for word in arguments.emulator.split(";") if word] + [arguments.program]
    sys.path.insert(0, str(HERE.parent))
    failures = 0
    for name, window, staying in CASES:
        with tempfile.TemporaryDirectory() as temporary:
            folder = pathlib.Path(temporary)
            view = "ZOOM|W|" + window
            before = plot(program, HERE / name, view, folder, "before")
            after = plot(program, HERE / name, "Burst|all||" + view, folder, "after")
            found = list(compare_plots.differences(before, after, 1.0))
            if not before.shapes:
                found.append("nothing is shown")
            left = references(folder / "after.dxf")
            if left != staying:
                found.append(f"references {left} are left instead of {staying}")
            print(f"{name}: {len(before.shapes)} shapes, {len(found)} differences")
            for line in found[:10]:
                print("  " + line)
            failures += len(found)
    sys.exit(1 if failures else 0)


main()
