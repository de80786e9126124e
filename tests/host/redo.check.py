def check(case):
    assert [r.point(11) for r in case.after.entities("RAY")] == [(1, 0, 0), (0, -1, 0)]
    for line in ("RAY", "There is nothing to redo."):
        assert line in case.errors, case.errors
