"""Everything but what is kept: references on frozen layers and in other spaces, nested ones, one of a block that must not
be exploded."""
import collections


def check(case):
    after = case.after.entities()
    kinds = collections.Counter(record.type for record in after)
    left = [record.text(2) for record in case.after.entities("INSERT")]
    assert sorted(left) == ["KEEP", "PART", "PART", "PART"], left
    assert not case.after.entities("ATTDEF"), "tags never show"
    values = {record.text(1) for record in case.after.entities("TEXT")}
    assert {"plain", "mirrored", "locked", "only texts", "straight", "sheared", "nested", "Muster GmbH"} <= values
    assert not {"hidden", "1.0", "h", "paper", "frozen"} & values, values
    # A nested reference stays one where it can be placed whole, with its attributes; a sheared one is burst too.
    nested = [record for record in case.after.entities("INSERT") if record.text(8) == "0" and record.integer(67) is None and record.text(2) == "PART"]
    assert [a.text(1) for a in nested[0].attributes][:1] == ["7"], nested[0].attributes
    # Circles cannot be scaled unequally; those of the two unequal references and of the sheared one became ellipses.
    assert kinds["CIRCLE"] == 11 and kinds["ARC"] == 11, kinds
    texts = [record for record in case.after.entities("TEXT") if record.text(1) == "mirrored"]
    assert len(texts) == 1 and texts[0].text(8) == "0", "the current layer, not the attribute's"
    assert texts[0].integer(72) == 1 and texts[0].integer(73) == 2
