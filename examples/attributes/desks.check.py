def check(case):
    assert (case.folder / "list.csv").read_text().split("\n")[:3] == [
        "'D1',     'Alan',    250,    0.00",
        "'D2',    'Grace',    250,   20.00",
        "'D3',     'free',    250,   48.00"]
    # Nothing but outlines and texts is left; the prices lean as the definition says, and nobody is red.
    texts = {t.text(1): t for t in case.after.entities("TEXT")}
    assert sorted(texts) == ["250", "Alan", "D1", "D2", "D3", "Grace", "free"]
    assert {r.type for r in case.after.entities()} <= {"TEXT", "WIPEOUT", "VIEWPORT"}
    assert texts["250"].real(51) == 15 and texts["Grace"].text(62) is None and texts["Grace"].real(40) == 1
    block = [d.text(2) for d in case.after.block("DESK") if d.type == "ATTDEF"]
    assert block == ["WHO", "NUMBER", "COST"]
