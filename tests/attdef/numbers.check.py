def check(case):
    (definition,) = case.after.entities("ATTDEF")
    assert definition.point(10) == (18, 1e-7, -2)
    assert definition.real(40) == 1.23456789
    assert abs(definition.real(50) - 45.5) < 1e-12
