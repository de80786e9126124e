"""Plots in SVG and PDF as torvelhost writes them: what was drawn, in pixels or millimetres."""

import dataclasses
import re
import xml.etree.ElementTree
import zlib

SVG = "{http://www.w3.org/2000/svg}"


@dataclasses.dataclass
class Shape:
    color: str
    width: float  # 0: an area
    contours: list  # of lists of (x, y); those of lines are lines by themselves
    opacity: float = 1.0


@dataclasses.dataclass
class Image:
    corner: tuple  # the upper left one
    right: tuple   # the upper right one
    low: tuple     # the lower left one
    clip: list     # contours


@dataclasses.dataclass
class Plot:
    width: float
    height: float
    background: str
    shapes: list  # in the order in which they are drawn
    texts: int = 0  # that can be searched
    images: list = dataclasses.field(default_factory=list)

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
    clips = {clip.get("id"): read_contours(clip[0].get("d")) for clip in root.iter(SVG + "clipPath")}
    images = []
    for group in root.iter(SVG + "g"):
        if group.get("clip-path"):
            a, b, c, d, x, y = map(float, re.findall(r"-?[\d.]+", group[0].get("transform")))
            images.append(Image((x, y), (x + a, y + b), (x + c, y + d), clips[group.get("clip-path")[5:-1]]))
    shapes = []
    for element in root.iter(SVG + "path"):
        if element.get("clip-rule"):
            continue
        contours = read_contours(element.get("d"))
        if element.get("stroke"):
            shapes.append(Shape(element.get("stroke"), float(element.get("stroke-width")), contours))
        else:
            shapes.append(Shape(element.get("fill"), 0.0, contours, float(element.get("fill-opacity", 1))))
    return Plot(float(root.get("width")), float(root.get("height")), background, shapes, images=images)


def read_pdf(path, unit=1.0):
    """Its pages, in millimetres (or `unit` for each) from their upper left corners, as plots with their `texts`."""
    data = path.read_bytes()
    objects = {int(number): body for number, body in
               re.findall(rb"(\d+) 0 obj\n(.*?)\nendobj\n", data, re.DOTALL)}
    # The table at the end names the place of each.
    table = int(re.search(rb"startxref\n(\d+)\n%%EOF\n$", data)[1])
    assert data[table:].startswith(b"xref\n0 %d\n" % (len(objects) + 1))
    for number, place in enumerate(re.findall(rb"(\d{10}) 00000 n ", data[table:]), 1):
        assert data[int(place):].startswith(b"%d 0 obj\n" % number), number

    def stream(number):
        return zlib.decompress(objects[number].split(b"stream\n", 1)[1])

    def references(body, key):
        return [int(number) for number in re.findall(rb"(\d+) 0 R", re.search(rb"/" + key + rb" \[(.*?)\]", body)[1])]

    catalog = next(body for body in objects.values() if b"/Type /Catalog" in body)
    kids = references(objects[int(re.search(rb"/Pages (\d+)", catalog)[1])], b"Kids")
    return [read_page(objects[kid], b"".join(map(stream, references(objects[kid], b"Contents"))), unit) for kid in kids]


def read_page(body, content, unit):
    points_per_unit = 72 / 25.4 * unit
    width, height = (float(size) / points_per_unit
                     for size in re.search(rb"/MediaBox \[0 0 ([\d.]+) ([\d.]+)\]", body).groups())
    opacities = {name.decode(): float(value) for name, value in re.findall(rb"(/O\d+) << /ca ([\d.]+) >>", body)}
    page = Plot(round(width, 2), round(height, 2), "#ffffff", [])
    scale, dx, dy = 1 / points_per_unit, 0.0, 0.0
    colors, line_width, opacity, contours, operands, clip = {}, 0.0, 1.0, [], [], None
    for word in content.decode("ascii").split():
        if not word[0].isalpha():
            operands.append(word)
            continue
        numbers = [] if word in ("gs", "Tf", "Tj", "Do") else [float(operand) for operand in operands]
        if word == "cm" and clip is not None:
            a, b, c, d, x, y = numbers
        elif word == "Do":
            place = lambda x, y: (dx + x * scale, dy + y * scale)
            page.images.append(Image(place(x + c, y + d), place(x + a + c, y + b + d), place(x, y), clip))
        elif word == "Q":
            clip = None
        elif word == "W*":
            clip, contours = contours, []
        elif word == "cm":
            scale, dx, dy = numbers[0] / points_per_unit, numbers[4] / points_per_unit, height - numbers[5] / points_per_unit
        elif word in ("RG", "rg"):
            colors[word] = "#" + "".join(f"{round(255 * number):02x}" for number in numbers)
        elif word == "w":
            line_width = numbers[0] * scale
        elif word == "gs":
            opacity = opacities[operands[0]]
        elif word == "re":
            page.background = colors["rg"]
        elif word == "m":
            contours.append([])
        elif word == "Tj":
            page.texts += 1
        if word in ("m", "l"):
            contours[-1].append((dx + numbers[0] * scale, dy + numbers[1] * scale))
        elif word == "S":
            page.shapes.append(Shape(colors["RG"], line_width, contours))
            contours = []
        elif word in ("f", "f*") and contours:
            page.shapes.append(Shape(colors["rg"], 0.0, contours, opacity))
            contours = []
        operands = []
    return page
