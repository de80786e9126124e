"""Every reference of DOOR in model space, and nothing else."""
import math


def values(reference):
    return [(a.section("AcDbAttribute").text(2), a.section("AcDbText").text(1)) for a in reference.attributes]


def expected(size="80x200", tag="D?", second="E?", note="none", color="white"):
    return [("SIZE", size), ("TAG", tag), ("TAG", second), ("NOTE", note), ("color", color), ("COST", "0")]


def near(a, b):
    return all(math.isclose(x, y, abs_tol=1e-9) for x, y in zip(a, b, strict=True))


def check(case):
    # Values go by tag and occurrence; the third TAG and OLD go; tags are compared in upper case, as stored.
    wanted = {
        "80": expected("90x210", "D1", "D2", "first", "red"),
        "90": expected("70x200", "B1"),
        "98": expected(),
        "A0": expected(tag="R1"),
    }
    for handle, rows in wanted.items():
        assert values(case.after.by_handle(handle)) == rows, (handle, values(case.after.by_handle(handle)))

    # Two paragraphs stay two; the single-line text beside them is the first.
    note = case.after.by_handle("80").attributes[3]
    embedded = note.groups[[g.code for g in note.groups].index(101):]
    assert ("1", "first\\Psecond") in [(str(g.code), g.value) for g in embedded], embedded

    # Everything but the value comes from the definitions, through the reference's scale of 2 and turn of 90 degrees.
    size, tag, second, note, color, cost = case.after.by_handle("90").attributes
    assert near(size.point(10), (18, 10, 0)) and near([size.real(40), size.real(50)], [0.4, 90])
    assert tag.text(8) == "TEXT" and tag.integer(72) == 1 and near(tag.point(11), (19, 11, 0))
    # Centred text begins half its width before its alignment point, here below it.
    x, y, _ = tag.point(10)
    assert near([x], [19]) and 10 < y < 11, (x, y)
    assert near(second.point(10), (19.5, 10, 0)) and near(note.point(10), (16, 10, 0))
    assert near(color.point(10), (22, 10, 0)) and near(cost.point(10), (23, 10, 0))
    assert cost.section("AcDbAttribute").integer(70) == 1
    assert near(case.after.by_handle("A0").attributes[0].point(10), (10, 31, 0))

    # All the rest is as it was: other blocks' references, nested ones, those in the layout, and the references themselves.
    for section, records in case.before.sections.items():
        for record in records:
            if section == "HEADER" or (record.type in ("ATTRIB", "SEQEND") and record.owner in wanted):
                continue
            after = case.after.by_handle(record.handle)
            groups = [g for g in after.groups if g.code != 66]
            assert groups == [g for g in record.groups if g.code != 66], (record, record.groups, after.groups)
    old = {a.handle for handle in wanted for a in case.before.by_handle(handle).attributes}
    new = {r.handle for r in case.after.sections["ENTITIES"]}
    assert not old & new, old & new
