def check(case):
    texts = [record for record in case.after.entities("TEXT") if record.text(1) == "paper"]
    assert [(t.integer(67), t.owner) for t in texts] == [(1, case.before.by_handle("AA").owner)]
    circles = [record for record in case.after.entities("CIRCLE")]
    assert [c.integer(67) for c in circles] == [1]
    assert len(case.after.entities("INSERT")) == len(case.before.entities("INSERT")) - 1
