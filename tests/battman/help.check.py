def check(case):
    made = case.after.by_handle("44")
    definition = made.section("AcDbAttributeDefinition")
    assert (definition.text(2), definition.text(3)) == ("SIZE", "How wide?")
    assert made.section("AcDbText").text(1) == "big"
