"""Code page 1252, CRLF, and a tag whose letters need the case table."""


def check(case):
    assert b"\r\n" in (case.folder / "out.dxf").read_bytes()
    rows = [(a.section("AcDbAttribute").text(2), a.text(1)) for a in case.after.by_handle("80").attributes]
    decoded = [tuple(t.encode("utf-8", "surrogateescape").decode("cp1252") for t in row) for row in rows]
    assert decoded == [("TÜR", "Größe"), ("NR", "§ 5")], decoded
