def check(case):
    before, after = (drawing.by_handle("31") for drawing in (case.before, case.after))
    changed = {a.code: a.value for a, b in zip(after.groups, before.groups) if a != b}
    # 6 by 2 in a viewport of 6 by 4, with a margin, then half of it
    assert {code: round(float(value), 9) for code, value in changed.items()} == {12: 3, 22: 1, 45: 2.04}, changed
