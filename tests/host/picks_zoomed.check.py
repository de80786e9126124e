def check(case):
    points = [record.point(10) for record in case.after.entities("POINT")]
    # Two segments' marks on the line, five segments' on the circle; the reference is burst.
    assert sorted(x == 5000 for x, _, _ in points) == [False] * 5 + [True] * 2, points
    assert not case.after.entities("INSERT") and len(case.after.entities("CIRCLE")) == 2
