def check(case):
    block = case.after.block("SIGN")
    assert [r.type for r in block] == ["LINE", "ATTDEF", "ATTDEF"]
    for r in block:
        assert not any(code in (100, 102, 330, 370) for code, _ in r.groups), r
    # The code page of the drawing is the standard one.
    assert block[1].text(2).encode("utf-8", "surrogateescape").decode("cp1252") == "TÜR"
