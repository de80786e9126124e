def check(case):
    after = case.after
    fields = after.objects("FIELD")
    assert len(fields) == 3, fields
    listed = after.objects("FIELDLIST")[0].section("AcDbIdSet").all(330)
    assert sorted(listed) == sorted(f.handle for f in fields)
    for field in fields:
        # Up to the attribute or text that shows it.
        owner = field
        while owner.type in ("FIELD", "DICTIONARY"):
            owner = after.by_handle(owner.owner)
        assert owner.type in ("ATTRIB", "ATTDEF", "TEXT", "MTEXT"), owner
