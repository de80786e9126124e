def check(case):
    assert any(f'Output File = "/somewhere{separator}plan.dxf"' in case.errors for separator in "/\\"), case.errors
    assert "[help] IDH_AttExt" in case.errors
