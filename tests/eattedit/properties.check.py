CODES = (8, 6, 62, 420, 370, 380, 390)


def check(case):
    def properties(handle):
        return [case.after.by_handle(handle).text(code) for code in CODES]

    assert properties("81") == ["TEXT", "ByBlock", "30", None, "25", "3", "F"], properties("81")
    assert properties("82") == ["0", None, "0", None, "-3", "1", None], properties("82")
    assert properties("83") == ["0", None, "1", "16711680", "211", None, None], properties("83")
    assert properties("86") == ["0", None, "149", "795192", "-3", None, None], properties("86")
    assert properties("84") == properties("85") == ["0"] + [None] * 6
