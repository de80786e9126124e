# A column a tag, in the order in which they are met; a tag once more in a reference has its number.
EXPECTED = {
    "some.csv": """#HANDLE,#BLOCK,#DRAWING,TAG,SIZE,TAG(2),TAG(3),OLD,COLOR,NOTE
#80,DOOR,plan.dxf,D1,90x210,D2,D3,gone,red,"first{LF}second"
#90,DOOR,plan.dxf,B1,70x200,,,,blue,
#98,DOOR,plan.dxf,,,,,,,
""",
    "gate.csv": """#HANDLE,#BLOCK,#DRAWING,CODE,OLD
#A8,GATE,plan.dxf,G1,kept
""",
    "every.csv": """#HANDLE,#BLOCK,#DRAWING,TAG,SIZE,TAG(2),TAG(3),OLD,COLOR,NOTE,CODE
#80,DOOR,plan.dxf,D1,90x210,D2,D3,gone,red,"first{LF}second",
#90,DOOR,plan.dxf,B1,70x200,,,,blue,,
#A0,DOOR,plan.dxf,R1,,,,,,,
#A8,GATE,plan.dxf,,,,,kept,,,G1
#C0,DOOR,plan.dxf,P1,,,,paper,,,
""",
}


def check(case):
    for name, expected in EXPECTED.items():
        found = (case.folder / name).read_bytes()
        assert found == expected.replace("\n", "\r\n").replace("{LF}", "\n").encode(), found.decode()
    assert not (case.folder / "none.csv").exists()
