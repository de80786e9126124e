def check(case):
    assert (case.folder / "undone.dxf").read_bytes() == (case.folder / "insert_bare.dxf").read_bytes()
    assert [r.type for r in case.after.block("FRAME")] == ["POINT"]
    sections = list(case.after.sections)
    assert sections.index("BLOCKS") == sections.index("ENTITIES") - 1, sections
