import math

TURN = math.atan2(4, 3)


def check(case):
    made = {d.text(2): d for d in case.after.entities("ATTDEF")}

    # The plane is the world's YZ, and files count in it along the world's Y and Z; the user's X axis is turned there.
    def in_plane(x, y):
        return 20 + x * 0.6 - y * 0.8, 30 + x * 0.8 + y * 0.6, 10

    def near(tag, code, x, y):
        assert math.dist(made[tag].point(code), in_plane(x, y)) < 1e-9, (tag, made[tag].point(code))

    def turned(tag, angle):
        found = made[tag].real(50, 0)
        assert abs(math.remainder(found - math.degrees(angle + TURN), 360)) < 1e-9, (tag, found)

    for definition in made.values():
        assert math.dist(definition.point(210), (1, 0, 0)) < 1e-12, definition.groups
    near("PICKED", 10, 3, 4)
    turned("PICKED", math.pi / 4)
    near("BELOW", 10, 3 + 3.75 * math.sqrt(0.5), 4 - 3.75 * math.sqrt(0.5))
    turned("BELOW", math.pi / 4)
    near("FIT", 10, 0, 0)
    near("FIT", 11, 6, 8)
    turned("FIT", math.atan2(8, 6))
    near("LINES", 10, 5, 5)
    turned("LINES", 0)
