def check(case):
    values = {a.handle: a.text(1) for a in case.after.by_handle("39").attributes}
    assert values == {"3C": "red", "3D": "open again"}, values
