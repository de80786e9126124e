def check(case):
    def text(handle):
        record = case.after.by_handle(handle)
        return record.integer(72, 0), record.integer(74, 0), record.point(11)

    # Where each stood is where it hangs.
    assert text("81") == (1, 0, (10, 11, 0)), text("81")
    assert text("82") == (2, 1, (10, 12, 0)), text("82")
    assert text("86") == (1, 3, (10, 16, 0)), text("86")
    center = case.after.by_handle("81")
    assert center.point(10)[0] < 10 and center.point(10)[1] == 11, center.point(10)
    below = case.after.by_handle("82").point(10)
    assert below[0] < 10 and below[1] >= 12, below
    # Back to the left it begins where it was seen last.
    left = case.after.by_handle("83")
    assert left.integer(72, 0) == 0 and left.point(10)[0] < 10, left.point(10)
    assert case.after.by_handle("86").integer(71) == 4
    assert case.after.by_handle("85").integer(71) == 6
