"""Plots in SVG as torvelhost writes them: what was drawn, in pixels."""

import dataclasses
import re
import xml.etree.ElementTree

SVG = "{http://www.w3.org/2000/svg}"


@dataclasses.dataclass
class Shape:
    color: str
    width: float  # 0: an area
    contours: list  # of lists of (x, y); those of lines are lines by themselves
    opacity: float = 1.0


@dataclasses.dataclass
class Plot:
    width: float
    height: float
    background: str
    shapes: list  # in the order in which they are drawn

    def lines(self, color=None):
        """Every polyline by itself, as (points, colour, width)."""
        return [(contour, shape.color, shape.width) for shape in self.shapes if shape.width
                for contour in shape.contours if color in (None, shape.color)]

    def areas(self, color=None):
        return [shape for shape in self.shapes if not shape.width and color in (None, shape.color)]


def read_contours(path):
    contours = []
    for command, x, y in re.findall(r"([ML])(-?[\d.]+) (-?[\d.]+)", path):
        if command == "M":
            contours.append([])
        contours[-1].append((float(x), float(y)))
    return contours


def read_plot(path):
    root = xml.etree.ElementTree.parse(path).getroot()
    background = root.find(SVG + "rect").get("fill")
    shapes = []
    for element in root.iter(SVG + "path"):
        contours = read_contours(element.get("d"))
        if element.get("stroke"):
            shapes.append(Shape(element.get("stroke"), float(element.get("stroke-width")), contours))
        else:
            shapes.append(Shape(element.get("fill"), 0.0, contours, float(element.get("fill-opacity", 1))))
    return Plot(float(root.get("width")), float(root.get("height")), background, shapes)
