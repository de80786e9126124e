import math


def near(found, expected):
    assert len(found) == len(expected), (found, expected)
    for a, b in zip(found, expected):
        assert math.dist(a, b) < 1e-9, (a, b)


def lengths_along(curve, start, end, steps=5000):
    """The length up to each of many parameters, by chords."""
    total, table, last = 0.0, [(start, 0.0)], curve(start)
    for i in range(1, steps + 1):
        t = start + (end - start) * i / steps
        point = curve(t)
        total += math.dist(last, point)
        table.append((t, total))
        last = point
    return table


def expect_equal_parts(curve, table, points, parts, closed):
    """Each point lies on the curve where the length says."""
    whole = table[-1][1]
    for k, point in enumerate(points, 0 if closed else 1):
        wanted = whole * k / parts
        i = max(n for n, (_, length) in enumerate(table) if length <= wanted)
        t, length = table[i]
        step = (table[i + 1][0] - t) * (wanted - length) / (table[i + 1][1] - length) if i + 1 < len(table) else 0
        assert math.dist(curve(t + step), point[:2]) < 1e-5, (k, curve(t + step), point)


def spline(t):
    """The cubic of the drawing between its knots, by the recursive definition of the basis functions."""
    knots = [0, 0, 0, 0, 1, 3, 3, 3, 3]
    controls = [(20, 40), (25, 55), (35, 30), (45, 45), (50, 40)]

    def basis(i, degree):
        if degree == 0:
            return 1.0 if knots[i] <= t < knots[i + 1] else 0.0
        left = knots[i + degree] - knots[i]
        right = knots[i + degree + 1] - knots[i + 1]
        return ((t - knots[i]) / left * basis(i, degree - 1) if left else 0) + (
            (knots[i + degree + 1] - t) / right * basis(i + 1, degree - 1) if right else 0)
    return tuple(sum(basis(i, 3) * c[axis] for i, c in enumerate(controls)) for axis in (0, 1))


def check(case):
    points = [p.point(10) for p in case.after.entities("POINT")]
    assert all(p.owner == "1F" and p.text(8) == "0" for p in case.after.entities("POINT"))

    def take(count):
        taken = points[:count]
        del points[:count]
        return taken

    near(take(3), [(3, 0, 0), (6, 0, 0), (9, 0, 0)])
    near(take(4), [(25, 0, 0), (20, 5, 0), (15, 0, 0), (20, -5, 0)])
    near(take(1), [(0, 25, 0)])

    def oval(t):
        return 20 + 8 * math.cos(t), 20 + 4 * math.sin(t)
    on_ellipse = take(8)
    near(on_ellipse[:1], [(28, 20, 0)])
    expect_equal_parts(oval, lengths_along(oval, 0, 2 * math.pi), on_ellipse, 8, True)

    # Half a circle of radius 5 below its chord, then 10 up.
    step = (5 * math.pi + 10) / 5
    arc = [(5 - 5 * math.cos(k * step / 5), 40 - 5 * math.sin(k * step / 5), 0) for k in (1, 2, 3)]
    near(take(4), arc + [(10, 40 + 4 * step - 5 * math.pi, 0)])
    expect_equal_parts(spline, lengths_along(spline, 0, 3 - 1e-12), take(6), 7, False)
    near(take(4), [(40, 0, 0), (49, 0, 0), (50, 8, 0), (41, 8, 0)])
    near(take(3)[:1], [(60, 20, 0)])
    near(take(2), [(60, 60, 0)] * 2)
    third = (5 * math.pi + 10) / 3
    near(take(2), [(65 - 5 * math.cos(third / 5), 80 - 5 * math.sin(third / 5), 0), (70 + 2 * third - 5 * math.pi, 80, 0)])
    # Seen from behind: its plane's X axis points to the left, so counter-clockwise is clockwise from above.
    near(take(1), [(105, 5, 0)])
    near(take(2), [(100, 0, 0), (100, 10, 6)])
    near(take(1), [(5, 65, 0)])
    assert not points
