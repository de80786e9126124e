#!/usr/bin/env python3
"""compare_plots.py A.svg B.svg [--tolerance PIXELS]

Whether two plots show the same: every line of one lies on lines of the other in the same colour and width, every edge
of an area on such edges, and the reverse; images lie in the same places. How lines are cut into pieces, and the order of drawing, do not count.
Ends with 0 when they do, 1 with a list of places where they do not.
"""

import argparse
import collections
import math
import sys

import plots

CELL = 8.0  # pixels


def segments_by_look(plot):
    """Segments of each kind (line or edge, colour, width)."""
    looks = collections.defaultdict(list)
    for shape in plot.shapes:
        look = ("line" if shape.width else "area", shape.color, round(shape.width, 1))
        for contour in shape.contours:
            ends = contour if shape.width else contour + contour[:1]
            looks[look] += zip(ends, ends[1:])
    return looks


def cells_of(segment, reach):
    (x1, y1), (x2, y2) = segment
    for x in range(int((min(x1, x2) - reach) // CELL), int((max(x1, x2) + reach) // CELL) + 1):
        for y in range(int((min(y1, y2) - reach) // CELL), int((max(y1, y2) + reach) // CELL) + 1):
            yield x, y


def distance(point, segment):
    (x, y), ((x1, y1), (x2, y2)) = point, segment
    dx, dy = x2 - x1, y2 - y1
    square = dx * dx + dy * dy
    t = max(0.0, min(1.0, ((x - x1) * dx + (y - y1) * dy) / square)) if square else 0.0
    return math.hypot(x - x1 - t * dx, y - y1 - t * dy)


def samples(segment):
    (x1, y1), (x2, y2) = segment
    steps = max(1, math.ceil(math.hypot(x2 - x1, y2 - y1) / 2))
    for i in range(steps + 1):
        yield x1 + (x2 - x1) * i / steps, y1 + (y2 - y1) * i / steps


def missing(segments, others, tolerance):
    """Points on the segments that are not on any of the others."""
    grid = collections.defaultdict(list)
    for other in others:
        # A long slanting segment is cut, or its cells would be those of the whole box around it.
        (x1, y1), (x2, y2) = other
        parts = max(1, math.ceil(math.hypot(x2 - x1, y2 - y1) / (4 * CELL)))
        ends = [(x1 + (x2 - x1) * i / parts, y1 + (y2 - y1) * i / parts) for i in range(parts + 1)]
        for part in zip(ends, ends[1:]):
            for cell in cells_of(part, tolerance):
                grid[cell].append(part)
    for segment in segments:
        for point in samples(segment):
            near = grid.get((int(point[0] // CELL), int(point[1] // CELL)), ())
            if not any(distance(point, other) <= tolerance for other in near):
                yield point
                break


def differences(a, b, tolerance=0.5):
    """A line for each place where the plots differ."""
    if (a.width, a.height, a.background) != (b.width, b.height, b.background):
        yield "the plots differ in size or background"
        return
    looks_a, looks_b = segments_by_look(a), segments_by_look(b)
    for look in sorted(set(looks_a) | set(looks_b)):
        kind, color, width = look
        name = f"{color} {kind}" + (f" of width {width}" if width else "")
        for here, there, which in ((looks_a, looks_b, "first"), (looks_b, looks_a, "second")):
            for x, y in missing(here.get(look, []), there.get(look, []), tolerance):
                yield f"only in the {which}: {name} at {x:.1f},{y:.1f}"
    points = [[point for image in plot.images for point in sum(image.clip, [image.corner, image.right, image.low])]
              for plot in (a, b)]
    if len(points[0]) != len(points[1]) or any(math.dist(*ends) > tolerance for ends in zip(*points)):
        yield f"the images are {a.images} and {b.images}"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("plots", nargs=2)
    parser.add_argument("--tolerance", type=float, default=0.5)
    arguments = parser.parse_args()
    found = list(differences(*map(plots.read_plot, arguments.plots), arguments.tolerance))
    for line in found[:20]:
        print(line)
    if len(found) > 20:
        print(f"... and {len(found) - 20} more")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
