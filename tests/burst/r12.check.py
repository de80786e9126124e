"""A version without ellipses gets lines for circles that are scaled unequally."""


def check(case):
    assert not case.after.entities("ELLIPSE")
    assert len(case.after.entities("LINE")) > 200
    assert len(case.after.entities("POLYLINE")) == 13 and len(case.after.entities("CIRCLE")) == 11
