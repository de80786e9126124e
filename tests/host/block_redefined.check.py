import math
import re


def check(case):
    assert [r.type for r in case.after.block("OLD")] == ["LINE", "CIRCLE"]
    head = next(r for r in case.after.sections["BLOCKS"] if r.type == "BLOCK" and r.text(2) == "OLD")
    assert head.point(10) == (0, 0, 0), head.groups
    assert [r.groups for r in case.after.entities("INSERT")] == [r.groups for r in case.before.entities("INSERT")]

    numbers = re.findall(r"[ML](-?[\d.]+) (-?[\d.]+)", (case.folder / "plot.svg").read_text())
    drawn = [((float(x) - 800) / 1200 * 48.96 + 42, (600 - float(y)) / 1200 * 48.96 + 8.75) for x, y in numbers]

    def is_drawn(*point):
        return any(math.dist(point, each) < 0.01 for each in drawn)

    # The new lines' ends: of the plain reference, the mirrored one, the nested one. The old one's is no end any more.
    for point in ((30, 10), (34, 10), (50, 2), (70, 10), (74, 10)):
        assert is_drawn(*point), (point, drawn)
    assert not is_drawn(31, 10)
