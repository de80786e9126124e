def colored(rows):
    return sum(abs(r - b) > 60 for row in rows for r, g, b in row)


def check(case):
    plain, hovered, selected = (case.picture(f"{name}.png") for name in ("plain", "hovered", "selected"))
    assert len(plain) == 380 and len(plain[0]) == 640
    assert colored(plain) == 0 and colored(hovered) > 50 and colored(selected) > 20
    assert hovered != selected
    small, near = case.picture("small.png"), case.picture("near.png")
    assert len(small) == len(near) == 190 and small != near
