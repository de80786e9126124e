def check(case):
    rows = [(a.section("AcDbAttribute").text(2), a.text(1)) for a in case.after.by_handle("80").attributes]
    assert rows == [("SIZE", "90x210"), ("TAG", "D1"), ("TAG", "D2"), ("NOTE", "first"), ("color", "white"),
                    ("COST", "0")], rows
