import math


def check(case):
    points = [p.point(10) for p in case.after.entities("POINT")]
    assert len(points) == 32766
    steps = [math.dist(a, b) for a, b in zip(points, points[1:])]
    # Chords of equal arcs differ where the curve bends, by the third power of their length.
    assert max(steps) - min(steps) < 1e-9, (min(steps), max(steps))
