import dxf_groups


def check(case):
    undone = dxf_groups.read(case.folder / "undone.dxf")
    for number in ("81", "D0"):
        assert undone.by_handle(number).groups == case.before.by_handle(number).groups
    assert undone.by_handle("82").text(1) == case.after.by_handle("82").text(1) == "7 by 7"
    assert case.after.by_handle("81").text(1) == "Size 8 by 8!"
    # Only this value's fields went.
    gone = len(case.before.objects("FIELD")) - len(case.after.objects("FIELD"))
    assert gone == 3, gone
