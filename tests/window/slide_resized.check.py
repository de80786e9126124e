def check(case):
    drawing, large, fitted, small, regenerated = (
        case.picture(f"{name}.png") for name in ("drawing", "large", "fitted", "small", "regenerated"))
    assert large != drawing and regenerated == drawing
    assert len(fitted) == 200 and len(fitted[0]) == 320
    assert fitted == small
