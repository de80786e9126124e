def check(case):
    box = case.after.block("BOX")
    assert [p.point(10) for p in box if p.type == "POINT"] == [(2, 0, 0), (4, 0, 0), (6, 0, 0)]
    assert [i.point(10) for i in box if i.type == "INSERT"] == [(2, 2, 0), (4, 0, 0)]
    assert all(r.owner == "61" for r in box)
    assert [(p.point(10), p.text(67)) for p in case.after.entities("POINT")] == [((6, 0, 0), None)]
