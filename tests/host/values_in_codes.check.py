def check(case):
    assert case.after.by_handle("3C").groups == case.before.by_handle("3C").groups
    assert case.after.by_handle("3D").text(1) == "shown"
    assert case.after.by_handle("41").all(1) == ["turned", "turned"]
