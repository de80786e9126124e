def check(case):
    sections, section = {}, None
    for line in (case.folder / "profile.ini").read_text().splitlines():
        if line.startswith("["):
            section = sections.setdefault(line, {})
        else:
            section[line.split("=")[0]] = line.split("=")[1]
    manager, editor = sections["[Dialogs\\\\BAttMan]"], sections["[Dialogs\\\\BATTMAN.EA]"]
    assert manager.pop("Placement") and editor.pop("Placement")
    hidden = ["Color", "Default", "Height", "Layer", "Linetype", "Lineweight", "Modes", "Oblique Angle", "Prompt",
              "Rotation", "Style", "Width Factor"]
    assert manager == {"ApplyChanges": "0", "EmphasizeDuplicates": "0", "Tag": "77", "Justification": "66",
                       "Boundary Width": "30", "Plotstyle": "55", **dict.fromkeys(hidden, "-30")}, manager
    # What the disabled box shows is not what the user wants.
    assert editor == {"CurPage": "0"}, editor
