def check(case):
    assert [r.point(10) for r in case.after.entities("RAY")] == [(9, 9, 0)]
