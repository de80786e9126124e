#!/usr/bin/env python3
"""plots_test.py --program TORVELHOST [--emulator WORDS]: a drawing shows the same shapes in the same places after Burst.

Colours and widths of lines are not compared: what took them from its reference has none to take them from any more.
"""

import argparse
import collections
import math
import pathlib
import subprocess
import sys
import tempfile

import ezdxf
import ezdxf.enums

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "plot"))
import compare_plots  # noqa: E402
import plots  # noqa: E402

# Drawing, window to plot, references that stay.
CASES = [
    ("plan.dxf", "-160,-70|145,155", {"KEEP": 1, "PART": 3}),
    ("r12.dxf", "-160,-70|145,155", {"PART": 3, "WIDE": 2}),
    ("../attsync/fields.dxf", "-50,-50|250,175", {}),
    ("carried.dxf", "-60,-30|120,105", {"*D1": 2}),
    ("multi_line.dxf", "-50,-50|150,100", {}),
]


def polyline(*vertices, **more):
    return lambda block: block.add_lwpolyline(vertices, format="xyseb", **more)


def hatch(block):
    path = block.add_hatch(2).paths
    path.add_polyline_path([(0, 0, 0.5), (6, 0), (6, 6, -0.3)], is_closed=True, flags=1)
    path.add_edge_path(flags=16).add_arc((4, 2), 1, 0, 360)
    half = path.add_edge_path(flags=1)
    half.add_ellipse((12, 3), (4, 1), 0.5, 0, 180, ccw=False)
    half.add_line((8, 2), (16, 4))


def backward(block):
    """Between two points, backward and backward upside down."""
    for y, flags, alignment in (0, 2, "FIT"), (3, 6, "FIT"), (6, 2, "ALIGNED"), (9, 6, "ALIGNED"):
        text = block.add_text("Back", height=1, dxfattribs={"text_generation_flag": flags})
        text.set_placement((0, y), (5, y + 2), ezdxf.enums.TextEntityAlignment[alignment])


def mtext(text, attachment, direction=(1, 0.3, 0), fill=None):
    def add(block):
        made = block.add_mtext(text, dxfattribs={"char_height": 1, "insert": (4, 3), "width": 9, "attachment_point": attachment,
                                                 "text_direction": direction})
        if fill:
            made.set_bg_color(fill, scale=1.5)
    return add


def polygon_mesh(block):
    mesh = block.add_polymesh((3, 4))
    for row in range(3):
        for column in range(4):
            mesh.set_mesh_vertex((row, column), (2 * row + 0.3 * column, 2 * column, row))


def polyface_mesh(block):
    block.add_polyface().append_faces([[(0, 0, 0), (4, 0, 0), (4, 3, 1), (0, 3, 0)], [(0, 3, 0), (4, 3, 1), (2, 6, 0)]])


def multi_line(block):
    block.add_mline([(0, 0), (5, 0), (5, 5)], dxfattribs={"scale_factor": 0.8})


def dimensions(block):
    """One of each kind; a picture that was moved from where its block draws it."""
    style = {"dimtxt": 0.5, "dimasz": 0.4, "dimexo": 0.1, "dimexe": 0.2, "dimgap": 0.1}
    block.add_linear_dim(base=(0, -2), p1=(0, 0), p2=(8, 0), override=style).render()
    moved = block.add_aligned_dim(p1=(0, 5), p2=(8, 0), distance=1, override=style)
    moved.render()
    moved.dimension.dxf.insert = (0, 3)
    block.add_diameter_dim(center=(4, 2), radius=1.5, angle=100, override=style).render()
    block.add_angular_dim_2l(base=(12, 8), line1=((9, 6), (13, 6)), line2=((9, 6), (11, 9)), override=style).render()
    block.add_ordinate_x_dim(feature_location=(8, 5), offset=(0.5, 2), override=style).render()


# What blocks hold; each has been shown otherwise once it was burst.
SHAPES = {
    "donut": polyline((0, 0, 1, 1, 1), (4, 0, 1, 1, 1), close=True),
    "dot": polyline((1, 2, 2, 2, 1), (3, 2, 2, 2, 1), close=True),
    "tapered": polyline((0, 0, 0.5, 0.5, 0.5), (6, 0, 0.5, 1.5, -0.4), (6, 6, 0, 0, 0)),
    "crossing": polyline((0, 0), (6, 6), (6, 0), (0, 6), dxfattribs={"const_width": 0.8}),
    "joints": polyline((0, 0, 0.4, 2), (4, 0, 0.6, 0.6), (6, 3, 2, 0.4), (2, 5, 1, 1), (6, 6, 1, 1), (1, 7)),
    "backward": backward,
    "arrow": polyline((0, 0, 0.3, 0.3), (4, 0, 1.5, 0), (7, 0)),
    "thick": polyline((0, 0, 0.5, 0.5, 0.5), (6, 0, 0.5, 1.5, 0), (6, 6), dxfattribs={"thickness": 2}),
    "old": lambda block: block.add_polyline2d([(0, 0, 0.5, 0.5, 0.5), (6, 0, 0.5, 1.5, 0), (6, 6)], format="xyseb"),
    "hatch": hatch,
    "leader": lambda block: block.add_leader([(0, 0), (3, 3), (8, 3)], override={"dimasz": 0.8}),
    "points": lambda block: block.add_point((2, 2)),
    "polygon_mesh": polygon_mesh,
    "polyface_mesh": polyface_mesh,
    "lines": mtext("Multi\\Pline {\\H1.5x;big} \\W2;wide\\Q20;slant \\S1/2;", 5),
    "one_line": mtext("a\\W1.5;b\\Q10;c", 8),
    "filled": mtext("Back", 1, (1, 0, 0), fill=2),
}
SCALES = [dict(xscale=2, yscale=0.6), dict(xscale=-1.6, yscale=0.7, rotation=33), dict(xscale=1.5, yscale=1.5, zscale=1.5)]
# What an unequal scale could not show.
ALIKE = {"multi_line": multi_line, "dimensions": dimensions}
TURNED = [dict(), dict(xscale=1.5, yscale=1.5, zscale=1.5, rotation=30)]
# R12 has neither hatches nor light polylines, leaders and multi-line texts.
VERSIONS = {"R2018": list(SHAPES), "R12": ["old", "points", "backward", "polygon_mesh", "polyface_mesh"]}
ALIKE_IN = {"R2018": list(ALIKE), "R12": ["dimensions"]}
CELL = 40


def make_shapes(version, path):
    doc = ezdxf.new(version)
    doc.header["$PDMODE"], doc.header["$PDSIZE"] = 34, 1
    for row, name in enumerate(VERSIONS[version]):
        SHAPES[name](doc.blocks.new(name.upper()))
        for column, scale in enumerate(SCALES):
            doc.modelspace().add_blockref(name.upper(), (column * CELL, row * CELL), scale)
    for row, name in enumerate(ALIKE_IN[version]):
        ALIKE[name](doc.blocks.new(name.upper()))
        for column, scale in enumerate(TURNED):
            doc.modelspace().add_blockref(name.upper(), ((len(SCALES) + column) * CELL, row * CELL), scale)
    doc.saveas(path)
    return f"{-CELL / 2},{-CELL / 2}|{(len(SCALES) + len(TURNED) - 0.5) * CELL},{(len(VERSIONS[version]) - 0.5) * CELL}"


def plot(program, drawing, commands, folder, name):
    svg = folder / (name + ".svg")
    subprocess.run(program + ["-q", "--profile", str(folder / "profile.ini"), "--size", "4200x3150", "-c", commands, "-p", str(svg),
                              "-o", str(folder / (name + ".dxf")), str(drawing)], check=True, capture_output=True)
    picture = plots.read_plot(svg)
    areas = [contour for shape in picture.shapes if not shape.width for contour in shape.contours]
    lines = [contour for shape in picture.shapes if shape.width for contour in shape.contours]
    picture.shapes = [plots.Shape("black", 0.0, outline(areas)), plots.Shape("black", 1.0, lines)]
    return picture


def outline(contours):
    """The edges of areas without those that two pieces share: how a wide line is cut into pieces does not count."""
    edges = collections.Counter()
    for contour in contours:
        for ends in zip(contour, contour[1:] + contour[:1]):
            if math.dist(*ends) > 0.2:  # of a dot, the ends of what meets in its middle
                edges[tuple(sorted(ends))] += 1
    return [list(edge) for edge, times in edges.items() if times == 1]


def references(path):
    import dxf_groups
    found = {}
    for record in dxf_groups.read(path).entities("INSERT"):
        found[record.text(2)] = found.get(record.text(2), 0) + 1
    return found


def compare(program, drawing, window, staying, folder):
    view = "ZOOM|W|" + window
    before = plot(program, drawing, view, folder, "before")
    after = plot(program, drawing, "Burst|all||" + view, folder, "after")
    found = list(compare_plots.differences(before, after, 1.0))
    if not any(shape.contours for shape in before.shapes):
        found.append("nothing is shown")
    left = references(folder / "after.dxf")
    if left != staying:
        found.append(f"references {left} are left instead of {staying}")
    print(f"{drawing.name}: {sum(len(shape.contours) for shape in before.shapes)} contours, {len(found)} differences")
    return found


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--emulator", default="")
    arguments = parser.parse_args()
    program = [word for word in arguments.emulator.split(";") if word] + [arguments.program]
    sys.path.insert(0, str(HERE.parent))
    failures = 0
    with tempfile.TemporaryDirectory() as temporary:
        made = pathlib.Path(temporary)
        cases = [(HERE / name, window, staying) for name, window, staying in CASES]
        cases += [(made / (version + ".dxf"), make_shapes(version, made / (version + ".dxf")), {}) for version in VERSIONS]
        for drawing, window, staying in cases:
            found = compare(program, drawing, window, staying, made)
            for line in found[:10]:
                print("  " + line)
            failures += len(found)
    sys.exit(1 if failures else 0)


main()
