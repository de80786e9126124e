def check(case):
    block = [r.section("AcDbAttributeDefinition").text(2) for r in case.after.block("DOOR") if r.type == "ATTDEF"]
    assert block == ["WIDE", "TAG", "BRAND", "NOTE", "color", "COST"]
    assert [r.groups for r in case.after.entities()] == [r.groups for r in case.before.entities()]
    assert case.after.variable("$HANDSEED") == case.before.variable("$HANDSEED"), "previews leave nothing behind"
