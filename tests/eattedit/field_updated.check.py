def check(case):
    assert "9.0" in case.after.by_handle("81").text(1)
