def rows(case, name, encoding):
    return {row.replace(" ", "") for row in (case.folder / name).read_bytes().decode(encoding).split("\r\n")}


def check(case):
    found = rows(case, "out.txt", "utf-8")
    assert found >= {"'DOOR','東ä','1m'", "'*U3','12','2m'"}, found
    # In the code page the tag's letters are others than the template's.
    found = rows(case, "page.txt", "cp1252")
    assert found >= {r"'DOOR','\U+6771ä',''", "'*U3','12',''"}, found
