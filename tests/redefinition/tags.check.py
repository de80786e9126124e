def check(case):
    assert case.after.by_handle("44").groups == case.before.by_handle("44").groups
    record = case.after.by_handle("49")
    assert (record.text(2), record.text(3)) == ("color", "hue"), record.groups
