def check(case):
    assert case.errors.count("four.png is not there") == 1, case.errors
