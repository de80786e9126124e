import csv


def rows(path):
    with path.open(encoding="utf-8", newline="") as file:
        return {row["#HANDLE"]: row for row in csv.DictReader(file)}


def check(case):
    values = {a.handle: a.text(1) for a in case.after.by_handle("80").attributes}
    assert values == {"81": "D9", "82": '80x200, "left"', "83": "D2", "84": "D3", "85": "", "86": "rot-grün",
                      "87": r"first {2\3}"}, values
    contents = case.after.by_handle("87").all(1)
    assert contents[1] == r"first \{2\\3\}\Pthird", contents
    assert case.after.by_handle("91").text(1) == "" and case.after.by_handle("C2").text(1) == ""
    for old, new in zip(case.before.by_handle("80").attributes, case.after.by_handle("80").attributes):
        assert [g for g in old.groups if g.code != 1] == [g for g in new.groups if g.code != 1], new.handle

    after, undone = rows(case.folder / "after.csv"), rows(case.folder / "undone.csv")
    assert after["#80"]["NOTE"] == "first {2\\3}\nthird" and undone["#80"]["NOTE"] == "first\nsecond"
    assert after["#80"]["SIZE"] == '80x200, "left"' and undone["#80"]["SIZE"] == "90x210"
    assert [after["#C0"]["OLD"], undone["#C0"]["OLD"]] == ["", "paper"]
