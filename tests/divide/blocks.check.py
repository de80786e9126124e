import math


def check(case):
    old = {i.handle for i in case.before.entities("INSERT")}
    marks = [i for i in case.after.entities("INSERT") if i.handle not in old]
    assert all(m.text(2).upper() == "MARK" and m.owner == "1F" for m in marks)
    placed = [(m.point(10), m.real(50, 0.0)) for m in marks]
    # Along the circle's tangent; not aligned; aligned about the Z axis whatever the plane (upwards there is no angle).
    expected = [((25, 0, 0), 90), ((20, 5, 0), 180), ((15, 0, 0), 270), ((20, -5, 0), 0),
                ((25, 0, 0), 0), ((15, 0, 0), 0), ((25, 0, 0), 0), ((15, 0, 0), 0),
                ((100, 0, 0), 90), ((100, 8, 0), 90), ((100, 10, 6), 270), ((100, 2, 6), 270)]
    assert len(placed) == len(expected), placed
    for (point, angle), (wanted, turned) in zip(placed, expected):
        assert math.dist(point, wanted) < 1e-9 and abs(angle - turned) % 360 < 1e-9, (point, angle, wanted, turned)
