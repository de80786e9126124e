def check(case):
    wipeout, = case.after.entities("WIPEOUT")
    assert not wipeout.all(290) and wipeout.all(14) == ["-0.5", "0.5", "0.5", "-0.5"]
    records = {c.text(1): c.all(91) for c in case.after.sections["CLASSES"]}
    assert records["WIPEOUT"] == [] and records["WIPEOUTVARIABLES"] == []
