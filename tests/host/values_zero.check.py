def check(case):
    lines = (case.folder / "values.csv").read_bytes().decode().splitlines()
    assert lines == [
        "#HANDLE,#BLOCK,#DRAWING,NO,SIZE",
        "#10,DOOR,values_zero.dxf,,90",
        "#14,DOOR,values_zero.dxf,D2,70",
        "#18,,values_zero.dxf,D3,",
    ], lines
