def check(case):
    model, paper = case.after.entities("RAY")
    assert model.owner == "1F" and model.integer(67, 0) == 0 and model.point(10) == (15, 10, 0)
    assert tuple(round(x, 12) for x in model.point(11)) == (0.6, 0.8, 0)
    assert paper.owner == "1B" and paper.integer(67) == 1
