import math


def check(case):
    old = len(case.before.entities("XLINE"))
    found = [x.point(10) + x.point(11) for x in case.after.entities("XLINE")[old:]]
    half = math.sqrt(0.5)
    expected = [(0, 0, 0, math.sqrt(0.75), 0.5, 0), (5, 0, 0, math.sqrt(0.75), 0.5, 0), (7, 7, 0, 1, 0, 0),
                (2, 2, 0, half, half, 0), (3, 3, 0, 0, 1, 0)]
    assert len(found) == len(expected), found
    for a, b in zip(found, expected):
        assert math.dist(a, b) < 1e-9, (a, b)
