"""A value of text and two fields of equal code keeps both, as new fields; the old ones are gone."""


def check(case):
    size, tag = case.after.by_handle("80").attributes[:2]
    assert (size.text(1), tag.text(1)) == ("plain", "Size 7 by 7!")
    extension = case.after.by_handle(tag.text(360))
    text = case.after.by_handle(case.after.by_handle(extension.text(360)).text(360))
    assert text.section("AcDbField").text(1) == "_text"
    assert text.text(2) == r"Size %<\_FldIdx 0>% by %<\_FldIdx 1>%!", text.text(2)
    children = [case.after.by_handle(handle) for handle in text.all(360)]
    assert [c.section("AcDbField").text(2) for c in children] == [r'\AcExpr (3+4) \f "%lu2%pr0"'] * 2
    assert all(f.integer(91) == 63 for f in [text] + children)
    item = [g.value for g in text.groups]
    assert item[item.index("ACFD_FIELDTEXT_ATTDEF"):][1:4] == ["2", "1", "1"], "a whole number, 1"
    fields = [f.handle for f in case.after.objects("FIELD")]
    assert sorted(fields) == sorted([text.handle] + text.all(360)), fields
    listed = case.after.objects("FIELDLIST")[0].section("AcDbIdSet").all(330)
    assert sorted(listed) == sorted(fields), listed
    assert not {"D0", "D1", "D2", "D3", "D4"} & {r.handle for r in case.after.objects()}
