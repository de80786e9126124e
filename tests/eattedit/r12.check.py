def check(case):
    (reference,) = case.after.entities("INSERT")
    seat = reference.attributes[0]
    assert [seat.text(code) for code in (1, 41, 62, 71, 72, 370)] == ["13", "0.8", "3", "2", "2", None], seat.groups
    assert seat.point(11) == (4, 5, 0) and seat.point(10)[0] > 4, "written backwards to the right of its point"
