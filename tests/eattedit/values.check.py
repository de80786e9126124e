def check(case):
    after = case.after
    assert (after.by_handle("81").text(1), after.by_handle("82").text(1)) == ("Size 7 by 7!?", r"C:\Plans %%c1.0")
    codes = sorted(record.text(2) for record in after.objects("FIELD") if record.text(1) == "_text")
    assert codes == [r"C:\Plans %%c%<\_FldIdx 0>%", r"Size %<\_FldIdx 0>% by %<\_FldIdx 1>%!?"], codes
    assert len(after.objects("FIELD")) == 5
