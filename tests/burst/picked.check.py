def check(case):
    handles = {record.handle for record in case.after.entities()}
    assert {"A5", "99", "A0", "6D"} <= handles, "a line, a block that must stay whole, a frozen layer, one not selected"
    assert "95" not in handles
    assert [t.text(1) for t in case.after.entities("TEXT")] == ["only texts"], "the definitions themselves are left out"
