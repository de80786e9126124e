KEPT = {"81": [(1, "kept"), (40, 0.5)], "A9": [(1, "2")], "A1": [(1, "3")]}


def check(case):
    for record in case.after.entities():
        before = case.before.by_handle(record.handle)
        changed = [(new.code, new.value) for old, new in zip(before.groups, record.groups) if old != new]
        assert len(before.groups) == len(record.groups), record.handle
        kept = [(code, str(value)) for code, value in KEPT.get(record.handle, [])]
        assert sorted(changed) == sorted(kept), (record.handle, changed)
    assert len(case.before.objects()) == len(case.after.objects())
