import math


# The X axis of the user coordinate system is the world's Y, its Y the world's Z, its Z the world's X. In the plane of
# that normal, files count along the same axes.
def check(case):
    made = {d.text(2): d for d in case.after.entities("ATTDEF")}
    for definition in made.values():
        assert math.dist(definition.point(210), (1, 0, 0)) < 1e-12, definition.groups

    def near(tag, code, point):
        assert math.dist(made[tag].point(code), point) < 1e-9, (tag, made[tag].point(code))
    near("PICKED", 10, (23, 34, 10))
    near("BELOW", 10, (23 + 3.75 * math.sqrt(0.5), 34 - 3.75 * math.sqrt(0.5), 10))
    for tag in ("PICKED", "BELOW"):
        assert abs(made[tag].real(50) - 45) < 1e-9
    near("FIT", 10, (20, 30, 10))
    near("FIT", 11, (26, 38, 10))
    assert abs(made["FIT"].real(50) - math.degrees(math.atan2(8, 6))) < 1e-9
    near("LINES", 10, (25, 35, 10))
