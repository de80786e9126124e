import math


def check(case):
    made = case.after.by_handle("44")
    definition, text = made.section("AcDbAttributeDefinition"), made.section("AcDbText")
    assert (definition.text(2), definition.text(3), text.text(1)) == ("wide", "How wide?", "about80x200")
    assert definition.integer(70) == 1 + 4 + 8
    assert (text.real(40), text.real(50), text.real(41), text.real(51)) == (0.5, 30, 2, 80), text.groups
    assert text.integer(71) == 6, "mirrored both ways"
    assert text.integer(72) == 2 and math.dist(text.point(11), (0, 1, 0)) < 1e-9, "the text hangs where it stood"
    assert made.text(8) == "TEXT" and made.integer(62) == 3 and made.integer(370) == 30
    assert made.text(6) == "Continuous" and (made.integer(380), made.text(390)) == (3, "F")
    assert made.text(1000) == "of the size"

    def lines(handle):
        groups = case.after.by_handle(handle).groups
        embedded = groups[[g.code for g in groups].index(101):]
        return next(g.value for g in embedded if g.code == 1)

    assert lines("48") == "one\\Ptwo" and lines("49") == "black\\Pwhite"
    # The boundary was cancelled.
    assert case.after.by_handle("48").all(41)[-1] == case.before.by_handle("48").all(41)[-1]
    # OK applied it all: a value goes to its tag, and "SIZE" is no tag any more.
    tags = [a.section("AcDbAttribute").text(2) for a in case.after.by_handle("90").attributes]
    assert tags == ["wide", "TAG", "TAG", "NOTE", "color", "COST"]
    first = case.after.by_handle("90").attributes[0]
    assert first.section("AcDbText").text(1) == "about80x200" and first.text(8) == "TEXT"
    assert "CurPage=0\n" in (case.folder / "profile.ini").read_text()
