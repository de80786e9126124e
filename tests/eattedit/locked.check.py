def check(case):
    before, after = case.before.by_handle("39"), case.after.by_handle("39")
    changed = [new.handle for old, new in zip(before.attributes, after.attributes) if old.groups != new.groups]
    assert changed == ["3D"] and after.attributes[1].text(1) == "seen", changed
