import math


def check(case):
    definition, line = case.after.block("Turned")
    assert math.dist(line.point(10), (0, 0, 0)) < 1e-12 and math.dist(line.point(11), (0, -4, 0)) < 1e-12, line.groups
    assert math.dist(definition.point(210), (0, 0, 1)) > 1, definition.groups
    reference, = [r for r in case.after.entities("INSERT") if r.text(2) == "Turned"]
    assert math.dist(reference.point(210), (0, -1, 0)) < 1e-12, reference.groups
    attribute, = reference.attributes
    before = case.before.by_handle("3B")
    assert math.dist(attribute.point(10), before.point(10)) < 1e-9, attribute.groups
