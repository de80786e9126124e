import math


def near(a, b):
    return math.dist(a, b) < 1e-9


def check(case):
    made = {d.text(2): d for d in case.after.entities("ATTDEF")}
    assert len(made) == 10

    def held(tag):
        return made[tag].point(11 if made[tag].text(11) else 10)

    assert near(held("LEFT2"), (16, 20, 0)) and made["LEFT2"].real(40) == 4 and made["LEFT2"].real(50) == 90
    second = made["RIGHT2"]
    assert near(held("RIGHT2"), (50, -3.75, 0)) and second.real(40) == 1
    assert (second.integer(72), second.integer(74)) == (2, 3), "the previous justification, not the one chosen before"
    # 3-4-5: a line and a half down is (0.8, -0.6) times 1.5 heights. Align keeps the height, and ends where that leads.
    height = made["ALIGN"].real(40)
    down = (1.2 * height, -0.9 * height)
    below = made["ALIGNEDBELOW"]
    assert near(below.point(10), (100 + down[0], down[1], 0))
    assert abs(below.real(40) - height) < 1e-9 and below.integer(72) == 3
    along = [b - a for a, b in zip(below.point(10), below.point(11))]
    assert abs(along[0] * 4 - along[1] * 3) < 1e-9 and along[0] > 0, "along the previous baseline"
    # Fit goes between the points below the previous ones.
    fit = made["FITTEDBELOW"]
    assert near(fit.point(10), (203.6, -2.7, 0)) and near(fit.point(11), (233.6, 37.3, 0))
    assert fit.real(40) == 3 and fit.integer(72) == 5
    assert near(held("LINES2"), (300, 6.25, 0))
    assert (made["LINES2"].integer(72), made["LINES2"].integer(74)) == (1, 2)
