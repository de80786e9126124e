def check(case):
    before, after = (d.by_handle("39").attributes for d in (case.before, case.after))
    assert before[0].groups == after[0].groups
    assert after[1].text(1) == "seen"
