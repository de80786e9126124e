def check(case):
    definitions = {d.text(2): d for d in case.after.entities("ATTDEF")}
    shown = {tag: d.text(1) for tag, d in definitions.items()}
    assert shown == {"ALIVE": "No. 8.0", "DELETED": "plain", "MENU": "a 8.0, b 8.0", "CANCELLED": "kept", "LINES": "7.0"}, shown
    alive = {tag for tag, d in definitions.items() if d.text(102) == "{ACAD_XDICTIONARY"}
    assert alive == {"ALIVE", "MENU"}
    # A text's field and its children, for two definitions.
    assert len(case.after.objects("FIELD")) == 2 + 3
