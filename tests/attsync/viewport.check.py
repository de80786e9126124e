"""Through a floating viewport the user works in model space."""


def check(case):
    assert [a.text(1) for a in case.after.by_handle("80").attributes][:2] == ["90x210", "D1"]
    paper = [r.groups for r in case.after.entities() if r.owner in ("C0", "1B")]
    assert paper == [r.groups for r in case.before.entities() if r.owner in ("C0", "1B")]
