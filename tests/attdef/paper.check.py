def check(case):
    made = {d.text(2): d for d in case.after.entities("ATTDEF")}
    assert {tag for tag, d in made.items() if d.text(67) == "1"} == {"ON_PAPER", "BELOW_PAPER"}
    down = 1.5 * made["ON_PAPER"].real(40)
    assert made["ON_PAPER"].point(10) == (3, 4, 0) and made["BELOW_PAPER"].point(10) == (3, 4 - down, 0)
    assert made["IN_MODEL"].point(10) == (15, 10, 0) and made["BELOW_MODEL"].point(10) == (15, 10 - down, 0)
