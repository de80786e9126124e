import math

MODES = {"Left": (0, 0), "Align": (3, 0), "Fit": (5, 0), "Center": (1, 0), "Middle": (4, 0), "Right": (2, 0),
         "Top left": (0, 3), "Top center": (1, 3), "Top right": (2, 3),
         "Middle left": (0, 2), "Middle center": (1, 2), "Middle right": (2, 2),
         "Bottom left": (0, 1), "Bottom center": (1, 1), "Bottom right": (2, 1)}


def check(case):
    definitions = case.after.entities("ATTDEF")
    assert len(definitions) == len(MODES)
    for i, (definition, (name, modes)) in enumerate(zip(definitions, MODES.items())):
        assert (definition.integer(72, 0), definition.integer(74, 0)) == modes, (name, definition.groups)
        assert definition.text(1) == name and definition.text(2) == f"T{i}"
        assert definition.text(3) == f"Prompt & = {i}"
        assert definition.section("AcDbAttributeDefinition").integer(70) == 0
        assert definition.all(280)[-1] == "1", "the position is locked unless said otherwise"
        if name in ("Align", "Fit"):
            assert definition.point(10) == (10.0 * i, 0, 0)
            end = (10 * i + 8 * math.cos(math.pi / 6), 4.0, 0)
            assert math.dist(definition.point(11), end) < 1e-12, name
            assert abs(definition.real(50) - 30) < 1e-12, name
            assert (definition.real(40) == 2.5) == (name == "Fit"), "Align fits by its height, Fit by its width"
        elif name == "Left":
            assert definition.point(10) == (0, 5, 0) and definition.text(11) is None
        else:
            assert definition.point(11) == (10.0 * i, 5, 0), name
            assert definition.real(40) == 2.5
    # What hangs on the same kind of point hangs on the same side of it.
    places = {d.text(1): [d.point(10)[k] - d.point(11)[k] for k in (0, 1)] for d in definitions}
    assert places["Top left"][1] < places["Middle left"][1] < 0 < places["Bottom left"][1]
    assert places["Top left"][0] == 0 > places["Top center"][0] > places["Top right"][0]
