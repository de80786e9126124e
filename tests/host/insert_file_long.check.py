def check(case):
    text = next(r for r in case.after.block("LONG") if r.type == "MTEXT")
    assert "".join(text.all(3) + text.all(1)) == "a" + "中文字符" * 100
