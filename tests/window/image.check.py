RED, GREEN, BLUE, YELLOW = (255, 0, 0), (0, 255, 0), (0, 0, 255), (255, 255, 0)


def check(case):
    plain, hovered, near = (case.picture(f"{name}.png") for name in ("plain", "hovered", "near"))
    for rows in (plain, near):
        assert [rows[y][x] for y in (110, 170) for x in (150, 250)] == [RED, GREEN, BLUE, YELLOW]
    outlined = lambda rows: max(sum(b > 200 and 40 <= r < 150 and g > 100 for r, g, b in row) for row in rows[:100])
    assert outlined(plain) == 0 and outlined(hovered) > 300
