def check(case):
    settings = dict(line.split("=", 1) for line in (case.folder / "widths.ini").read_text().splitlines() if "=" in line)
    assert settings["List.Tag.Width"] == "200", settings
    assert settings["List.Prompt.Width"] == "50", settings
    assert int(settings["List.Value.Width"]) > 50, settings
    assert settings["Placement"].startswith("40,30,"), settings
