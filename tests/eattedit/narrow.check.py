def check(case):
    settings = dict(line.split("=", 1) for line in (case.folder / "narrow.ini").read_text().splitlines() if "=" in line)
    tag, prompt, value = (int(settings[f"List.{name}.Width"]) for name in ("Tag", "Prompt", "Value"))
    assert tag == prompt > 50 and value in (tag - 1, tag, tag + 1), settings
