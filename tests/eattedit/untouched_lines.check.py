def check(case):
    # The header has the variables that were set.
    for section, records in case.before.sections.items():
        assert [r.groups for r in records] == [r.groups for r in case.after.sections[section]], section
