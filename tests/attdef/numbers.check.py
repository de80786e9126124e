def check(case):
    (definition,) = case.after.entities("ATTDEF")
    assert definition.point(10) == (18, 1e-7, -2)
    assert abs(definition.real(40) - 2 ** 0.5) < 1e-15
    assert abs(definition.real(50) - 45.5) < 1e-12
