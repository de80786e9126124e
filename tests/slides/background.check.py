def check(case):
    picture = (case.folder / "shown.svg").read_text()
    assert "#00ffff" in picture and "#ff0000" in picture and "#0000ff" in picture, picture
