def check(case):
    names = lambda table: sorted(r.text(2).upper() for r in case.after.table(table))
    assert names("LAYER") == ["0", "LOST", "WALL"], names("LAYER")
    assert names("LTYPE") == sorted(set(names("LTYPE"))) and {"BRICKS", "DASHES"} <= set(names("LTYPE")), names("LTYPE")
    assert names("STYLE") == ["NARROW", "STANDARD"], names("STYLE")
    for table in ("LAYER", "LTYPE", "STYLE"):
        for r in case.after.table(table):
            assert r.handle and case.after.by_handle(r.handle) is r and case.after.by_handle(r.owner), r
