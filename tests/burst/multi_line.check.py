def check(case):
    values = {m.section("AcDbMText").text(1): m for m in case.after.entities("MTEXT")}
    assert sorted(case.after.entities("TEXT"), key=id) == [], "the hidden attribute leaves nothing"
    value = values[r"{\C1;red}\Pplain line"]
    assert (value.text(8), value.integer(62)) == ("NOTES", 3), "unlike a single line, it keeps layer and colour"
    body = value.section("AcDbMText")
    assert (body.integer(71), body.integer(73), body.real(44)) == (5, 2, 1.25)
    assert (body.integer(90), body.integer(63), body.real(45)) == (1, 4, 1.3)
    assert r"always\Pthere" in values
    # Letters that were stretched by the reference are stretched by codes.
    assert r"\W2.0;always\Pthere" in values, sorted(values)
