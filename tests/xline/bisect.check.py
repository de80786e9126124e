import math


def check(case):
    old = len(case.before.entities("XLINE"))
    found = [x.point(10) + x.point(11) for x in case.after.entities("XLINE")[old:]]
    half, eighth = math.sqrt(0.5), math.radians(-22.5)
    assert all(math.dist(line[:3], (1, 1, 0)) < 1e-12 for line in found)
    assert len(found) == 4, found
    assert math.dist(found[0][3:], (half, half, 0)) < 1e-9
    # The cursor came down from above, and then from the vertex: the last direction seen before either is kept.
    assert math.dist(found[1][3:], (half, half, 0)) < 1e-9, found[1]
    assert math.dist(found[2][3:], (1, 0, 0)) < 1e-9, found[2]
    assert math.dist(found[3][3:], (math.cos(eighth), math.sin(eighth), 0)) < 1e-9, found[3]
