def check(case):
    after = case.after
    record = [r for r in after.table("BLOCK_RECORD") if r.text(2) == "X"]
    begin = [r for r in after.sections["BLOCKS"] if r.type == "BLOCK" and r.text(2) == "X"]
    assert len(record) == len(begin) == 1
    values = [int(value) for code in (70, 280, 281) for value in record[0].all(code)]
    assert values == [4, 0, 1], record[0].groups
    assert begin[0].all(4) == ["a crate"], begin[0].groups
    assert begin[0].point(10) == (2, 0, 0)
    assert [r.type for r in after.block("X")] == ["LINE"]
