"""The block's order, what belongs to the definitions, and the references behind it."""


def values(reference):
    return [(a.section("AcDbAttribute").text(2), a.section("AcDbText").text(1)) for a in reference.attributes]


def check(case):
    block = case.after.block("DOOR")
    assert [(r.type, r.handle) for r in block] == [(r.type, r.handle) for r in case.before.block("DOOR")]
    tags = [r.section("AcDbAttributeDefinition").text(2) for r in block if r.type == "ATTDEF"]
    assert tags == ["TAG", "SIZE", "TAG", "BRAND", "NOTE", "color", "COST"]
    moved, size = case.after.by_handle("44"), case.after.by_handle("45")
    assert size.text(1000) == "of the size" and moved.text(1000) is None
    # The dictionary with the field and the record beside it now belongs to the other identity.
    assert moved.text(360) == "E0" and size.text(360) is None
    assert case.after.by_handle("E0").owner == "44"
    assert case.after.by_handle("E0").groups[3].value == "44", "its reactor too"
    assert case.after.by_handle("E5").text(1) == "of the number"
    assert case.after.by_handle("E2").text(301) == "No 7 of 7"

    rest = [("TAG", "E?"), ("NOTE", "none"), ("color", "white"), ("COST", "0")]
    assert values(case.after.by_handle("80")) == [("TAG", "Size 7 by 7!"), ("SIZE", "plain")] + rest
    assert values(case.after.by_handle("90")) == [("TAG", "No 7 of 7"), ("SIZE", "big"), rest[0], rest[1],
                                                  ("color", "red"), rest[3]]
    assert values(case.after.by_handle("98")) == [("TAG", "No 7 of 7"), ("SIZE", "80x200")] + rest
    assert values(case.after.by_handle("C0")) == [("TAG", "No 7 of 7"), ("SIZE", "small")] + rest
    assert case.after.by_handle("98").attributes[0].text(360), "the default's field is a field there"
    # The one inside another block stays.
    assert case.after.by_handle("54").groups == case.before.by_handle("54").groups
