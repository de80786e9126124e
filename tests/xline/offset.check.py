import math


def check(case):
    old = len(case.before.entities("XLINE"))
    found = [x.point(10) + x.point(11) for x in case.after.entities("XLINE")[old:]]
    slope = math.hypot(10, 10)
    # Through: parallel through the point. Distance: beside the picked line's own base point.
    expected = [(0, 0, 0, 10 / slope, 10 / slope, 0), (1, 1, 0, 1, 0, 0),
                (0, 2.5, 0, 1, 0, 0), (0, -2.5, 0, 1, 0, 0), (0, 2.5, 0, 1, 0, 0), (47.5, 0, 0, 0, 1, 0), (42.5, 8, 0, 0, -1, 0),
                (0, -12.5, 0, 1, 0, 0),
                (2.5, -20, 0, 0, -1, 0), (9, 9, 0, 1, 0, 0)]
    assert len(found) == len(expected), found
    for a, b in zip(found, expected):
        assert math.dist(a, b) < 1e-9, (a, b)
