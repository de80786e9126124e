"""In a layout its own references are synchronised, and only those."""


def check(case):
    first = [(a.text(2), a.text(1)) for a in case.after.by_handle("C0").attributes]
    assert first[:3] == [("SIZE", "80x200"), ("TAG", "P1"), ("TAG", "E?")] and len(first) == 6, first
    assert len(case.after.by_handle("C8").attributes) == 6
    paper = [r for r in case.after.entities() if r.owner in ("C0", "C8")]
    assert len(paper) == 14 and all(r.integer(67) == 1 for r in paper), paper
    model = [r.groups for r in case.after.entities() if r.owner in ("80", "90", "A0", "1F")]
    assert model == [r.groups for r in case.before.entities() if r.owner in ("80", "90", "A0", "1F")]
