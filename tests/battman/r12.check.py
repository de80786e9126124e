def check(case):
    seats = [r for r in case.after.entities("INSERT") if r.text(2) == "DESK"]
    assert seats and all([a.text(2) for a in r.attributes] == ["ROW", "SEAT", "LAMP"] for r in seats), seats
    assert {r.attributes[0].real(40) for r in seats} == {7}
