def check(case):
    assert [r.text(2) for r in case.after.block("GREEK")] == ["Ω"], case.after.block("GREEK")[0].groups
    assert [r.text(8) for r in case.after.block("Ω")] == ["д"]
