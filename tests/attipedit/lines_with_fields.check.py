def code_of(drawing, record):
    """The code of a value's field, and those of its parts."""
    extension = drawing.by_handle(record.text(360))
    text = drawing.by_handle(drawing.by_handle(extension.text(360)).text(360))
    return text.text(2), [drawing.by_handle(part).text(2) for part in text.all(360)]


def check(case):
    number, title = r'\AcExpr (3+4) \f "%lu2%pr0"', r"\AcVar Title"
    attribute, definition = case.after.by_handle("39").attributes[0], case.after.by_handle("34")
    assert code_of(case.after, attribute) == (r"Now %<\_FldIdx 0>% and %<\_FldIdx 1>%\Pend", [title, number])
    assert code_of(case.after, definition) == (r"{\C1;%<\_FldIdx 0>%}\Pnew", [number])
    assert attribute.all(1)[-1] == r"Now ---- and 7\Pend", attribute.all(1)
    assert definition.all(1)[-1] == r"{\C1;7}\Pnew", definition.all(1)
    for handle in ("3C", "34"):
        before, after = case.before.by_handle(handle), case.after.by_handle(handle)
        shape = [[g for g in record.groups if g.code in (10, 20, 40, 41, 46, 70, 71, 72, 74)] for record in (before, after)]
        assert shape[0] == shape[1], handle
