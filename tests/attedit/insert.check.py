def check(case):
    for record in case.before.block("DOOR"):
        assert record.groups == case.after.by_handle(record.handle).groups, record
    old = {r.handle for r in case.before.entities("INSERT")}
    made = [r for r in case.after.entities("INSERT") if r.handle not in old]
    values = [[a.all(1)[-1] for a in reference.attributes] for reference in made]
    assert values == [["Size 7 by 7!", "D?", "E?", "none", "white", "0"],
                      ["about Size 7 by 7!", "D?", "E?", r"new\Plines", "white", "0"],
                      ["plain", "D?", "E?", "none", "3.0white", "0"]], values
    alive = [[a.text(2) for a in reference.attributes if a.text(102) == "{ACAD_XDICTIONARY"] for reference in made]
    assert alive == [["SIZE"], ["SIZE"], ["color"]], alive
