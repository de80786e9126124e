def check(case):
    before, after = ([a.text(1) for a in drawing.by_handle("40").attributes] for drawing in (case.before, case.after))
    changed = {i: after[i] for i in range(len(before)) if before[i] != after[i]}
    assert changed == {2: "%%c13", 4: "5", 5: "c = d", 12: "twelve", 17: "18"}, changed
