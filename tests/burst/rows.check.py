def check(case):
    found = sorted(tuple(round(x, 9) for x in p.point(10)) for p in case.after.entities("POINT"))
    assert found == sorted((98 - 4 * row, 2 + 10 * column, 0) for row in range(2) for column in range(3)), found
    assert not case.after.entities("INSERT")
