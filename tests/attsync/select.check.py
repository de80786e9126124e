def check(case):
    rows = [(a.text(2), a.text(1)) for a in case.after.by_handle("A8").attributes]
    assert rows == [("CODE", "G1")], rows
    doors = [r.groups for r in case.after.entities() if r.owner in ("80", "90", "A0", "C0")]
    assert doors == [r.groups for r in case.before.entities() if r.owner in ("80", "90", "A0", "C0")]
