def embedded(definition):
    groups = definition.groups
    begin = next(k for k, group in enumerate(groups) if group.code == 101)
    return type(definition)([groups[0]] + groups[begin:])


def check(case):
    picked, = case.after.block("P")
    changed, = case.after.entities("ATTDEF")
    assert embedded(picked).text(1) == r"C:\\Plans\\\{x\}", embedded(picked).text(1)
    assert embedded(changed).text(1) == r"C:\\Plans", embedded(changed).text(1)
