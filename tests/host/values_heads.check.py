def check(case):
    tags = (case.folder / "tags.csv").read_text(encoding="utf-8").splitlines()
    assert tags[0] == "#HANDLE,#BLOCK,#DRAWING,A,A(2)(1),A(2),#BLOCK(1)", tags
    assert tags[1].endswith(",TAGS,find.dxf,first,of its own,second,x"), tags
    doors = (case.folder / "doors.csv").read_text(encoding="utf-8").splitlines()
    assert [line.split(",")[:2] for line in doors[1:]] == [["#40", "DOOR"], ["#41", "DOOR"], ["#42", "DOOR"]], doors
