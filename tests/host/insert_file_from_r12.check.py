def check(case):
    old = {r.handle for records in case.before.sections.values() for r in records}
    new = [r for records in case.after.sections.values() for r in records if r.handle and r.handle not in old]
    assert len(new) > 80
    for r in new:
        assert r.owner != "0" and case.after.by_handle(r.owner), r
        assert r.all(100)[0] in ("AcDbEntity", "AcDbSymbolTableRecord"), r
    markers = {r.type: r.all(100) for r in new}
    assert markers["ATTDEF"] == ["AcDbEntity", "AcDbText", "AcDbAttributeDefinition"]
    assert markers["ARC"] == ["AcDbEntity", "AcDbCircle", "AcDbArc"]
    part = next(r for r in case.after.block("P") if r.type == "ATTDEF")
    assert part.section("AcDbAttributeDefinition") and part.text(2)
