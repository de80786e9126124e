def check(case):
    old = {reference.handle for reference in case.before.entities("INSERT")}
    values, codes = [], []
    for reference in case.after.entities("INSERT"):
        if reference.handle in old:
            continue
        attribute = next(a for a in reference.attributes if a.text(2) == "TEXT")
        # The value of the multi-line text stands behind that of the single line.
        values.append(attribute.all(1)[-1])
        extension = case.after.by_handle(attribute.text(360))
        text = case.after.by_handle(case.after.by_handle(extension.text(360)).text(360))
        codes.append((text.text(2), [case.after.by_handle(part).text(2) for part in text.all(360)]))
    number = r'\AcExpr (3+4) \f "%lu2%pr0"'
    assert values == [r"{\H4.0;big} 7", r"{\H4.0;big} word 7"], values
    assert codes == [(r"{\H4.0;big} %<\_FldIdx 0>%", [number]), (r"{\H4.0;big} word %<\_FldIdx 0>%", [number])], codes
