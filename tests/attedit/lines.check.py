def check(case):
    before, after = case.before.by_handle("3C"), case.after.by_handle("3C")
    shapes = [[g for g in record.groups if g.code in (10, 20, 40, 41, 46, 60, 70, 71, 72)] for record in (before, after)]
    assert shapes[0] == shapes[1]
    assert after.all(1) == ["----, 7", "----, 7"], after.all(1)
    extension = case.after.by_handle(after.text(360))
    text = case.after.by_handle(case.after.by_handle(extension.text(360)).text(360))
    assert text.text(2) == r"%<\_FldIdx 0>%, %<\_FldIdx 1>%"
    parts = [case.after.by_handle(part).text(2) for part in text.all(360)]
    assert parts == [r"\AcVar Title", r'\AcExpr (3+4) \f "%lu2%pr0"'], parts
    assert case.after.by_handle("3D").text(1) == "seen"
