"""A value of text and two fields becomes a text that holds the same code, and shows the same."""


def check(case):
    texts = {t.text(1): t for t in case.after.entities("TEXT")}
    assert set(texts) == {"plain", "Size 7 by 7!", "OAK"}, set(texts)
    assert texts["plain"].text(360) is None
    extension = case.after.by_handle(texts["Size 7 by 7!"].text(360))
    field = case.after.by_handle(case.after.by_handle(extension.text(360)).text(360))
    assert field.section("AcDbField").text(2) == r"Size %<\_FldIdx 0>% by %<\_FldIdx 1>%!"
    children = [case.after.by_handle(handle) for handle in field.all(360)]
    assert [c.section("AcDbField").text(2) for c in children] == [r'\AcExpr (3+4) \f "%lu2%pr0"'] * 2
    listed = case.after.objects("FIELDLIST")[0].section("AcDbIdSet").all(330)
    assert sorted(listed) == sorted([field.handle] + field.all(360)), "the reference's own are gone with it"
