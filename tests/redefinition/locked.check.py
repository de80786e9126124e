def check(case):
    assert case.after.by_handle("34").groups == case.before.by_handle("34").groups
