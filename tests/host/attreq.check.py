def check(case):
    assert [(a.text(2), a.text(1)) for a in case.after.entities("ATTRIB")] == [
        ("ASKED", "x"), ("PRESET", "given"), ("LAST", "y")]
