def check(case):
    (definition,) = [d for d in case.after.entities("ATTDEF") if d.text(2) == "ANNOTATIVE"]
    applications = definition.all(1001)
    assert sorted(applications) == ["AcDbAttr", "AcadAnnotative"], applications
    assert definition.all(1070) in (["0", "1", "1", "1"], ["1", "1", "0", "1"]), definition.all(1070)
    assert definition.all(1002) == ["{", "}"] and definition.all(1000) == ["AnnotativeData"]
    known = [record.text(2) for record in case.after.table("APPID")]
    assert known.count("AcadAnnotative") == 1 and known.count("AcDbAttr") == 1, known
    assert len(case.after.objects("FIELD")) == len(case.before.objects("FIELD")) + 2
