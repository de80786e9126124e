def check(case):
    definitions = case.after.entities("ATTDEF")
    assert len(definitions) == 9
    for i, definition in enumerate(definitions):
        groups = definition.groups
        embedded = next(k for k, group in enumerate(groups) if group.code == 101)
        inner = type(definition)([groups[0]] + groups[embedded:])
        assert inner.integer(71) == i + 1, "the attachment"
        assert inner.point(10) == (20.0 * i, 0, 0)
        assert inner.text(1) == rf"{{\C1;one}}\Ptwo {i}", inner.text(1)
        assert inner.real(41) == i, "the boundary width; 0 leaves the text's own"
        assert definition.text(1) == "one" and definition.point(10) == (20.0 * i, 0, 0)
