def check(case):
    old = {r.handle for r in case.before.entities("RAY")}
    assert [(r.point(10), r.text(67)) for r in case.after.entities("RAY") if r.handle not in old] == [
        ((1, 1, 0), "1"), ((3, 3, 0), None)]
    assert "Layout1" in case.output.splitlines(), case.output
