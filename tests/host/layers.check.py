FROZEN, LOCKED = 1, 4


def check(case):
    found = {layer.text(2): (layer.integer(70), layer.integer(62)) for layer in case.after.table("LAYER")}
    # A layer that is off has its colour below zero.
    assert found == {"0": (FROZEN | LOCKED, -7), "Walls": (FROZEN, 3), "Doors": (LOCKED, -7), "Windows": (FROZEN, -7),
                     "Current": (0, -7), "Late": (0, 7)}, found
