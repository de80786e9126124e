def check(case):
    contents = {handle: [g.value for g in case.after.by_handle(handle).groups if g.code == 1] for handle in ("3C", "41")}
    assert contents["3C"] == ["Now ---- and 7", r"Now ---- and 7\Pend"], contents
    assert contents["41"] == ["new", r"new\Plines"], contents
    assert len(case.before.objects("FIELD")) == len(case.after.objects("FIELD"))
