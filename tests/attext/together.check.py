"""All doors stand before the gate, the one that came last too."""


def check(case):
    blocks = [line.split(",")[0].strip(" '") for line in (case.folder / "out.txt").read_text().splitlines()]
    assert blocks == ["DOOR"] * 5 + ["GATE", "HOUSE", "BADGE", "PLAIN"], blocks
