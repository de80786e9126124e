def check(case):
    assert "nowhere.dxf" in case.errors, case.errors
    assert "<svg" in (case.folder / "plot.svg").read_text()
