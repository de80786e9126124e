def check(case):
    lines = (case.folder / "list.csv").read_text(encoding="utf-8").splitlines()
    assert lines == ["#HANDLE,#BLOCK,#DRAWING,SIZE", "#30,BOLT,values_constant.dxf,M8"], lines
