def check(case):
    assert case.after.by_handle("44").section("AcDbAttributeDefinition").text(3) == "How wide?"
