def check(case):
    assert "#00ff00" not in (case.folder / "shown.svg").read_text()
