def check(case):
    values = [a.text(1) for a in case.after.by_handle("80").attributes]
    assert values == [r"C:\Plans", "%%c12", r"{\H2;x}", "again", "about4.0  ", "red", "first"], values
    lines = case.after.by_handle("87").all(1)
    assert lines == ["first", r"{\H2;first}\Psecond and third"], lines
    assert len(case.after.objects("FIELD")) == 2, "a text's field and its child; nothing of the one that was saved first"
