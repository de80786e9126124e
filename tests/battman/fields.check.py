def field_of(case, holder):
    dictionary = case.after.by_handle(holder.text(360))
    fields = case.after.by_handle(dictionary.text(360))
    return case.after.by_handle(fields.text(360))


def check(case):
    definition = case.after.by_handle("45")
    assert definition.section("AcDbAttributeDefinition").text(3) == "Which of them?"
    # New attributes get the default, an old one keeps what it had.
    for handle, value in ("98", "the1.0No 7 of 7"), ("80", "Size 7 by 7!"):
        attribute = case.after.by_handle(handle).attributes[1]
        assert attribute.section("AcDbText").text(1) == value
        field = field_of(case, attribute)
        kinds = [case.after.by_handle(child).text(1) for child in field.all(360)]
        assert kinds == (["AcVar", "AcExpr", "AcExpr"] if handle == "98" else ["AcExpr", "AcExpr"]), kinds
    assert field_of(case, definition).text(301) == "the1.0No 7 of 7"
    assert case.after.by_handle("E5").text(1) == "of the number"
