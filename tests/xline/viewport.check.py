def check(case):
    found = [(x.point(10), x.owner == "1F", x.text(67)) for x in case.after.entities("XLINE")]
    found += [(x.point(10), x.owner == "1F", x.text(67)) for b in case.after.sections["BLOCKS"] if b.type == "XLINE"
              for x in [b]]
    assert sorted(found, key=lambda f: f[0]) == [((0, 0, 0), False, "1"), ((15, 10, 0), True, None)], found
