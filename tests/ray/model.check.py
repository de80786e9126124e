def check(case):
    rays = case.after.entities("RAY")
    half = (0, round(-(0.5**0.5), 12), round(0.5**0.5, 12))  # the last reply counts from the point before it
    assert [r.point(10) for r in rays] == [(1, 2, 0)] * 3
    assert [tuple(round(x, 12) for x in r.point(11)) for r in rays] == [(0.6, 0.8, 0), (0, -1, 0), half]
    assert all(r.owner == "1F" and r.text(8) == "0" for r in rays)
