def check(case):
    before, near, again = (case.picture(f"{name}.png") for name in ("before", "near", "again"))
    assert near != before and again == before
