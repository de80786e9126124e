def check(case):
    found = case.after.entities("WIPEOUT") + [r for r in case.after.sections["BLOCKS"] if r.type == "WIPEOUT"]
    assert [(w.owner, w.text(67)) for w in found] == [("1F", None)], found
