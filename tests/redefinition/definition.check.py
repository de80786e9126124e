def check(case):
    def definition(handle):
        record = case.after.by_handle(handle)
        return record.text(2), record.text(3), record.text(1)
    assert definition("44") == ("WIDTH", "SIZE?", "5 x 5"), definition("44")
    assert definition("45") == ("TAG", "twowords", "D?"), definition("45")
    for handle in ("46", "49"):
        assert case.after.by_handle(handle).groups == case.before.by_handle(handle).groups, handle
