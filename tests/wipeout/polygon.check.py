import math


def world(wipeout):
    """The boundary in the world, out of the pixels of the image."""
    corner, u, v = (wipeout.point(code) for code in (10, 11, 12))
    height = wipeout.real(23)
    xs, ys = wipeout.all(14), wipeout.all(24)
    assert wipeout.integer(71) == 2 and wipeout.integer(91) == len(xs) == len(ys)
    return [tuple(corner[i] + u[i] * (float(x) + 0.5) + v[i] * (height - 0.5 - float(y)) for i in range(3))
            for x, y in zip(xs, ys)]


def expect(found, *boundaries):
    assert len(found) == len(boundaries), found
    for wipeout, boundary in zip(found, boundaries):
        points = world(wipeout)
        assert len(points) == len(boundary) + 1, points
        for a, b in zip(points, boundary + boundary[:1]):
            assert math.dist(a, b) < 1e-9, (points, boundary)


def check(case):
    expect(case.after.entities("WIPEOUT"),
           [(0, 0, 0), (4, 0, 0), (4, 3, 0), (0, 3, 0)],
           [(10, 0, 0), (14, 0, 0), (14, 0, 0)],
           [(20, 0, 0), (24, 0, 0), (24, 3, 0)])
    kinds = {c.text(1): c.integer(91) for c in case.after.sections["CLASSES"]}
    assert kinds == {"WIPEOUT": 3}, kinds
