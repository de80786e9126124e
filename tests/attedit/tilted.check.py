import math

import dxf_groups

PLACES = (11, 21, 31, 40, 50, 72, 74, 210)  # the rest goes by the text


def to_world(x, y):
    """The user coordinate system's, all in one plane across the world's X axis."""
    return (10, 20 + 0.6 * x - 0.8 * y, 30 + 0.8 * x + 0.6 * y)


def held_at(text):
    """In world coordinates, the points of a text of one line: its plane is across the X axis too."""
    side = text.real(210, 0)
    assert abs(abs(side) - 1) < 1e-12
    points = [text.point(10), text.point(11)] if text.integer(72) == 5 else [text.point(11)]
    return sorted((side * z, side * x, y) for x, y, z in points)


def near(a, b):
    return len(a) == len(b) and all(math.dist(p, q) < 1e-9 for p, q in zip(a, b))


def check(case):
    definitions = {d.text(2): d for d in dxf_groups.read(case.folder / "before.dxf").entities("ATTDEF")}
    same, mirrored = case.after.entities("INSERT")
    assert same.owner == mirrored.owner == case.after.entities("LINE")[0].owner, "both in model space"
    assert [a.text(2) for a in same.attributes] == ["LINES", "CENTER", "FIT"]
    for attribute in same.attributes:
        definition = definitions[attribute.text(2)]
        for code in PLACES:
            for a, b in zip(attribute.all(code), definition.all(code)):
                assert math.isclose(float(a), float(b), abs_tol=1e-9), (attribute.text(2), code, a, b)
    there = {a.text(2): a for a in mirrored.attributes}
    place = lambda x, y: to_world(12 + 2 * (x - 2), 1 - (y - 1))
    assert near(held_at(there["CENTER"]), [place(3, 4)])
    assert near(held_at(there["FIT"]), sorted([place(0, 0), place(6, 8)]))
    lines = [tuple(float(there["LINES"].all(code)[-1]) for code in (10, 20, 30))]
    assert near(lines, [place(5, 5)]), lines
    assert [there[tag].all(1)[-1] for tag in ("LINES", "CENTER", "FIT")] == ["three", "second", "fits as well"]
