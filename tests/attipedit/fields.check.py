def check(case):
    tag = case.after.by_handle("80").attributes[0]
    assert tag.text(1) == r"7 and 7, no %<\_FldIdx 9>%", tag.text(1)
    extension = case.after.by_handle(tag.text(360))
    text = case.after.by_handle(case.after.by_handle(extension.text(360)).text(360))
    assert text.text(2) == r"%<\_FldIdx 0>% and %<\_FldIdx 1>%, no %<\_FldIdx 2>%_FldIdx 9>%", text.text(2)
    assert len(text.all(360)) == 3
    fields = {f.handle for f in case.after.objects("FIELD")}
    assert fields == {text.handle, *text.all(360)}, "nothing of the old fields is left"
