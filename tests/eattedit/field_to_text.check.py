def check(case):
    before, after = case.before.by_handle("81"), case.after.by_handle("81")
    assert "{ACAD_XDICTIONARY" in before.all(102)
    assert "{ACAD_XDICTIONARY" not in after.all(102)
    assert after.text(1) == before.text(1)
