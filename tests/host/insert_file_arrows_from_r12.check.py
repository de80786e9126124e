def check(case):
    style = next(r for r in case.after.table("DIMSTYLE") if r.text(2) == "MASS")
    arrow = next(r.handle for r in case.after.table("BLOCK_RECORD") if r.text(2) == "PFEILÖ")
    assert (style.all(342), style.all(343), style.all(344)) == ([arrow], [arrow], []), style
    assert not any(code in (5, 6, 7) for code, _ in style.groups), style
