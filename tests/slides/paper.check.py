def check(case):
    picture = (case.folder / "shown.svg").read_text()
    assert "#00ffff" not in picture and "#ff0000" in picture and "#0000ff" in picture and "#ffff00" in picture, picture
