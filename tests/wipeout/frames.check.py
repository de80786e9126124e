def check(case):
    settings = case.after.objects("WIPEOUTVARIABLES")
    assert [s.integer(70) for s in settings] == [1]
    named = case.after.objects()[0]
    entries = dict(zip(named.all(3), named.all(350)))
    assert entries["ACAD_WIPEOUT_VARS"] == settings[0].handle
    assert settings[0].owner == named.handle
    assert [c.text(1) for c in case.after.sections["CLASSES"]] == ["WIPEOUTVARIABLES"]
