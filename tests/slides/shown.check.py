def check(case):
    picture = (case.folder / "shown.svg").read_text()
    # Green is an area's, yellow a line's; the slide's screen is black.
    assert 'width="160"' in picture and "#00ff00" in picture and "#ffff00" in picture and "#000000" in picture, picture
