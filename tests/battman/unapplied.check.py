def values(reference):
    return [(a.section("AcDbAttribute").text(2), a.section("AcDbText").text(1)) for a in reference.attributes]


def check(case):
    order = ["TAG", "SIZE", "TAG", "BRAND", "NOTE", "PRICE", "color"]
    block = [r.section("AcDbAttributeDefinition").text(2) for r in case.after.block("DOOR") if r.type == "ATTDEF"]
    assert block == order
    order.remove("BRAND")
    for handle in ("80", "90", "98", "C0"):
        assert [tag for tag, _ in values(case.after.by_handle(handle))] == order
    assert ("SIZE", "big") in values(case.after.by_handle("90"))
    profile = (case.folder / "profile.ini").read_text()
    assert "ApplyChanges=1\n" in profile and "Tag=-30\n" in profile
