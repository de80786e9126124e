def check(case):
    # Two are mirrored or scaled unequally, and become references of their picture; of the others each has its own.
    dimensions = case.after.entities("DIMENSION")
    pictures = [dimension.text(2) for dimension in dimensions]
    assert len(set(pictures) - {"*D1"}) == len(pictures) == 4, pictures
    assert sorted(r.text(2) for r in case.after.entities("INSERT")) == ["*D1"] * 2
    original = [record.type for record in case.before.block("*D1")]
    for picture in pictures:
        assert [record.type for record in case.after.block(picture)] == original
        assert [r.text(70) for r in case.after.sections["BLOCKS"] if r.type == "BLOCK" and r.text(2) == picture] == ["1"]
