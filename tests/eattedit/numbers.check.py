def check(case):
    size, note = case.after.by_handle("82"), case.after.by_handle("87")
    assert (size.real(40), size.real(50), size.real(41), size.real(51)) == (18, 45.5, 1.5, -80)
    assert size.text(71) is None, "a box was marked past a number that does not suit"
    # Groups 41 of several lines: the width of the embedded text.
    assert [float(width) for width in note.all(41)][-1] == 0, note.all(41)
