def decoded(text):
    return text.encode("utf-8", "surrogateescape").decode("cp1252")


def check(case):
    before, after = case.before, case.after

    def record(drawing, table, name):
        return next(r for r in drawing.table(table) if r.text(2) == name)

    assert record(after, "BLOCK_RECORD", "SIGN").handle == record(before, "BLOCK_RECORD", "SIGN").handle
    assert record(after, "LAYER", "TEXT").groups == record(before, "LAYER", "TEXT").groups
    assert [r.groups for r in after.block("GRIFF")] == [r.groups for r in before.block("GRIFF")]
    assert [r.type for r in after.block("SIGN")] == ["LINE", "ATTDEF", "ATTDEF", "ATTDEF", "INSERT"]
    reference = before.entities("INSERT")[0]
    assert after.entities("INSERT")[0].handle == reference.handle
    values = [(decoded(a.text(2)), decoded(a.text(1))) for a in after.entities("ATTRIB")]
    assert values == [("TÜR", "Größe"), ("NR", "§ 5"), ("WO", "hier")], values
