def check(case):
    references = len(case.before.entities("INSERT")) - sum(r.integer(67, 0) for r in case.before.entities("INSERT"))
    assert (case.folder / "out.dxx").read_bytes().count(b"EOF\r\n") == references
    assert case.output == f"\n{references} objects in extract file.\n\n", case.output
