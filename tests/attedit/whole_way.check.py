import math


def points(text):
    """What a text of one line hangs on: its point, or both ends of Align and Fit."""
    if text.integer(72) in (3, 5):
        return [text.point(10)[:2], text.point(11)[:2]]
    return [text.point(11 if text.text(11) and text.text(2) != "LEFT" else 10)[:2]]


def check(case):
    definitions = [r for r in case.after.block("Sheet") if r.type == "ATTDEF"]
    stretched, mirrored = case.after.entities("INSERT")
    assert [len(r.attributes) for r in (stretched, mirrored)] == [24, 24]
    # What a text hangs on lies where the reference takes the definition's.
    angle = math.radians(20)
    to_world = {stretched: lambda x, y: (1.5 * x * math.cos(angle) - y * math.sin(angle),
                                         1.5 * x * math.sin(angle) + y * math.cos(angle)),
                mirrored: lambda x, y: (140 + x, -y)}
    for reference, place in to_world.items():
        for definition, attribute in zip(definitions, reference.attributes):
            assert attribute.text(2) == definition.text(2)
            assert [attribute.integer(c) for c in (72, 74)] == [definition.integer(c) for c in (72, 74)], attribute.text(2)
            wanted = sorted(place(*point) for point in points(definition))
            for a, b in zip(wanted, sorted(points(attribute))):
                assert math.dist(a, b) < 1e-9, (attribute.text(2), a, b)
    values = [a.all(1)[-1] for a in stretched.attributes]
    assert values == ["Left", "other", "a fitted one", "about the middle", "a Mid 3.0", "ends here", "top & left",
                      "Top center", "Top right", "Middle left", "Middle center", "Middle right", "Bottom left",
                      "Bottom center", "100%", r"one\Ptwo\Pthree", r"Top center\Pand below", r"Top right\Pand below",
                      r"in\Pthe\Pmiddle", r"Middle center\Pand below", r"Middle right\Pand below",
                      r"Bottom left\Pand below", r"Bottom center\Pand below", r"the\Pend"], values
    assert mirrored.attributes[0].text(1) == "mirrored"
    # A text's field and its part: the definition's, two references'.
    assert len(case.after.objects("FIELD")) == 6
