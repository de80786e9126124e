def check(case):
    assert "Number Found = \"0\"" in case.errors
    assert case.output == "\n0 objects in extract file.\n\n"
    assert not (case.folder / "none.txt").exists()
