def check(case):
    old = {r.handle for r in case.before.entities("INSERT")}
    made = [r for r in case.after.entities("INSERT") if r.handle not in old]
    # The value of the multi-line text stands behind that of the single line.
    values = [a.all(1)[-1] for reference in made for a in reference.attributes]
    assert values == [r"{\H4.0;big} small", r"{\H4.0;big} word", r"{\H4.0;big} line"], values
