import math


def lines(drawing):
    return [x.point(10) + x.point(11) for x in drawing.entities("XLINE")]


def check(case):
    found = lines(case.after)[len(lines(case.before)):]
    expected = [(1, 2, 0, 0.6, 0.8, 0), (1, 2, 0, 0.6, 0.8, 0), (1, 2, 0, 0, 1, 0),
                (3, 4, 0, 1, 0, 0), (5, 6, 7, 1, 0, 0), (9, 1, 0, 0, 1, 0), (9, 1, 0, -1, 0, 0)]
    assert len(found) == len(expected), found
    for a, b in zip(found, expected):
        assert math.dist(a, b) < 1e-9, (a, b)
