def check(case):
    block = case.after.block("Part")
    assert [r.type for r in block] == ["ATTDEF", "ATTDEF", "ATTDEF", "LINE", "CIRCLE"], block
    assert [r.text(2) for r in block[:3]] == ["C", "A", "B"]
    assert (block[3].point(10), block[3].point(11), block[4].point(10)) == ((0, 0, 0), (4, 0, 0), (2, 2, 0))
    assert block[1].point(10) == (0, 3, 0)
    head = next(r for r in case.after.sections["BLOCKS"] if r.type == "BLOCK" and r.text(2) == "Part")
    assert head.point(10) == (0, 0, 0) and head.integer(70) == 2, head.groups
    # What was taken is gone, what lies on the locked layer stays.
    lines = case.after.entities("LINE")
    assert [r.text(8) for r in lines] == ["LOCKED"] and not case.after.entities("CIRCLE") + case.after.entities("ATTDEF")
    reference, = [r for r in case.after.entities("INSERT") if r.text(2) == "Part"]
    assert [(a.text(2), a.text(1)) for a in reference.attributes] == [("C", "of C"), ("A", "of A"), ("B", "vB")]
    assert reference.attributes[1].point(10) == (100, 106, 0)
    records = {r.text(2): r for r in case.after.table("BLOCK_RECORD")}
    if records:
        record = records["Part"]
        assert {r.owner for r in block} == {head.owner} == {record.handle}
    handles = [r.handle for section in case.after.sections.values() for r in section if r.handle]
    assert len(handles) == len(set(handles))
    assert int(case.after.variable("$HANDSEED")[0], 16) > max(int(h, 16) for h in handles)
