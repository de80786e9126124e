def check(case):
    after = case.after
    record = {r.text(2): r for r in after.table("BLOCK_RECORD")}
    assert set(record) == {"*Model_Space", "*Paper_Space", "TOR", "GRIFF", "*U1", "SHEET", "SIGN"}, record
    layers = {r.text(2): r for r in after.table("LAYER")}
    assert set(layers) == {"0", "Türen", "TEXT"} and layers["Türen"].text(6) == "ZAUN", layers
    assert {r.text(2) for r in after.table("APPID")} >= {"LINKS"}

    fence = next(r for r in after.table("LTYPE") if r.text(2) == "ZAUN")
    shapes = after.by_handle(fence.text(340))
    assert shapes.type == "STYLE" and shapes.text(3) == "ltypeshp.shx" and shapes.owner == after.by_handle(shapes.owner).handle
    assert next(r for r in after.table("STYLE") if r.text(2) == "Schmal").real(41) == 0.5

    door = after.block("TOR")
    assert [r.type for r in door] == ["LINE", "LINE", "INSERT", "INSERT", "TEXT", "ATTDEF"]
    assert {r.owner for r in door} == {record["TOR"].handle}
    begin = next(r for r in after.sections["BLOCKS"] if r.type == "BLOCK" and r.text(2) == "TOR")
    assert begin.point(10) == (1, 0, 0) and begin.integer(70) == 2 and begin.text(4) == "eine Tür"
    sill, leaf = door[:2]
    # A handle of what came along, one of what did not, the layer.
    assert leaf.all(1005) == [sill.handle, "0"] and leaf.text(1000) == "öffnet" and leaf.text(1003) == "Türen"
    text = door[4]
    assert text.text(1) == "5 m² ≤ Ω", text.text(1)
    dictionary = after.by_handle(text.text(360))
    note = after.by_handle(dictionary.text(360))
    assert (dictionary.owner, note.owner) == (text.handle, dictionary.handle)
    assert (note.text(1), note.text(340)) == ("Maß", sill.handle)
    assert [(a.text(2), a.text(1)) for a in after.entities("ATTRIB")] == [("NR", "7")]
    # Model space: the reference with its values in their block, and no viewport.
    assert [r.type for r in after.block("SHEET")] == ["INSERT", "ATTRIB", "ATTRIB", "SEQEND"] or [
        r.type for r in after.block("SHEET")] == ["INSERT"], after.block("SHEET")
    handles = [r.handle for records in after.sections.values() for r in records if r.handle]
    assert len(handles) == len(set(handles))
