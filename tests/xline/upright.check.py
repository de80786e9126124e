import math


def check(case):
    found = [x.point(10) + x.point(11) for x in case.after.entities("XLINE")]
    # Upright, and leaning, where what lies above the drawing plane is picked as it is seen. The upright's side along
    # the plane's normal is no line to draw beside.
    expected = [(10, 2, 10, -1, 0, 0), (10, 7, 10, -1, 0, 0)]
    assert len(found) == len(expected), found
    for a, b in zip(found, expected):
        assert math.dist(a, b) < 1e-9, (a, b)
    assert case.output.count("No usable object selected") == 2, case.output
