def check(case):
    before, after = case.before.by_handle("34"), case.after.by_handle("34")
    assert [g.value for g in after.groups if g.code == 1] == ["a", r"{\C1;a}\Pb"], after.groups
    assert after.text(3) == "Why?"
    assert [g for g in before.groups if g.code not in (1, 3)] == [g for g in after.groups if g.code not in (1, 3)]
    assert len(case.before.objects()) == len(case.after.objects())
