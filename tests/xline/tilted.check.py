import math


def check(case):
    old = len(case.before.entities("XLINE"))
    found = [x.point(10) + x.point(11) for x in case.after.entities("XLINE")[old:]]
    expected = [(2, 0, 3, 0, 0, 1), (0, 0, 2, 1, 0, 0), (0, 0, -2, 1, 0, 0)]
    assert len(found) == len(expected), found
    for a, b in zip(found, expected):
        assert math.dist(a, b) < 1e-9, (a, b)
