def tags(records):
    return [r.section("AcDbAttributeDefinition").text(2) for r in records if r.type == "ATTDEF"]


def check(case):
    assert tags(case.after.block("DOOR")) == ["TAG", "SIZE", "TAG", "BRAND", "NOTE", "color", "COST"]
    assert case.after.by_handle("63").text(3) == "Whose?"
    assert [a.section("AcDbAttribute").text(2) for a in case.after.by_handle("98").attributes] == [
        "TAG", "SIZE", "TAG", "NOTE", "color", "COST"]
