def check(case):
    (desk,) = case.after.entities("INSERT")
    assert [(a.text(2), a.text(1)) for a in desk.attributes] == [("ROW", "3"), ("SEAT", "12"), ("LAMP", "no")]
    assert desk.attributes[2].point(10) == (4, 7, 0)
    assert [r.type for r in case.after.entities()] == ["INSERT", "ATTRIB", "ATTRIB", "ATTRIB", "SEQEND"]
