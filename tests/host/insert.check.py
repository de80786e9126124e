def check(case):
    old = {r.handle for r in case.before.entities("INSERT")}
    door, gate = [r for r in case.after.entities("INSERT") if r.handle not in old]
    assert [door.real(code, 1.0) for code in (41, 42, 43)] == [2, 2, 2]
    assert [gate.real(code, 1.0) for code in (41, 42, 43, 50)] == [3, -1, 3, 90]
    values = [(a.text(2), a.text(1)) for a in case.after.entities("ATTRIB")][-7:]
    assert values == [("SIZE", "a"), ("TAG", "b"), ("TAG", "c"), ("NOTE", "d"), ("color", "e"), ("COST", "f"),
                      ("CODE", "")], values
