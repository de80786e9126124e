def check(case):
    shown = [part.split("Attribute Extraction>")[0] for part in case.errors.split("> show\n")[1:]]
    texts = [(("(o) Space" in s, "(o) DXF" in s), "[ Template File ]  (disabled)" in s,
              'Template File = ""  (disabled)' in s, s.split('Output File = "')[1].split('"')[0]) for s in shown]
    assert texts == [((True, False), False, False, "a.txt.txt"), ((False, True), True, True, "a.txt.txt"),
                     ((False, True), True, True, "b.dxx"), ((False, False), False, False, "b.dxx")], texts
    x = [f"{case.before.by_handle(handle).real(10):8.2f} " for handle in ("80", "90")]
    assert (case.folder / "b.dxx").read_bytes().decode().split("\r\n") == [
        "(BL:NAME)(BL:X)  (TAG)       ", f"DOOR    {x[0]}D3          ", f"DOOR    {x[1]}B1          ", ""]
    assert "outputFileName=b.dxx" in (case.folder / "profile.ini").read_text()
    # A name without a folder says nothing about the folder to use next.
    assert "folder=" not in (case.folder / "profile.ini").read_text()
