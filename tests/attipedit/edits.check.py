def check(case):
    before, after = case.before.by_handle("80"), case.after.by_handle("80")
    values = {a.handle: a.text(1) for a in after.attributes}
    assert values == {"81": "D9", "82": "95x215", "83": "", "84": "D3", "85": "gone", "86": "red", "87": "one"}, values
    contents = [g.value for g in after.attributes[-1].groups if g.code == 1]
    assert contents == ["one", r"one\Ptwo"], contents
    # Nothing else of the attributes changed, and nothing was added.
    for old, new in zip(before.attributes, after.attributes):
        assert [g for g in old.groups if g.code != 1] == [g for g in new.groups if g.code != 1], new.handle
    assert len(case.before.objects()) == len(case.after.objects())
