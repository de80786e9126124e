def check(case):
    style = next(r for r in case.after.table("DIMSTYLE") if r.text(2) == "MASS")
    arrow = "PFEILÖ".encode("cp1252").decode("utf-8", "surrogateescape")
    assert (style.all(5), style.all(6), style.all(7)) == ([arrow], [arrow], []), style
    assert not any(340 <= code <= 349 for code, _ in style.groups), style
    assert style.handle and case.after.by_handle(style.handle) is style
    blocks = [r.text(2) for r in case.after.sections["BLOCKS"] if r.type == "BLOCK"]
    assert arrow in blocks and "_Dot" not in blocks, blocks
