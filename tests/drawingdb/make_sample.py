#!/usr/bin/python3
"""Writes sample.dxf, the drawing of the database's tests: one of every kind that has a class, and some that have none.

    /usr/bin/python3 make_sample.py > sample.dxf

Written by hand rather than through a library, so that unusual but legal spellings (blanks around numbers, long reals, upper
and lower case, control strings, extended data) are in it.
"""

OUT = []


def g(*pairs):
    for code, value in pairs:
        OUT.append(f"{code:>3}\n{value}\n")


def head(kind, handle, owner, *control):
    g((0, kind), (105 if kind == "DIMSTYLE" else 5, handle))
    g(*control)
    g((330, owner))


def entity(kind, handle, owner, layer, *extra, control=()):
    head(kind, handle, owner, *control)
    g((100, "AcDbEntity"), *extra[:0], (8, layer), *extra)


def point(code, x, y, z):
    return [(code, x), (code + 10, y), (code + 20, z)]


def table(name, handle, count):
    g((0, "TABLE"), (2, name), (5, handle), (330, 0), (100, "AcDbSymbolTable"), (70, count))


def record(kind, handle, owner, zone, name, *rest):
    head(kind, handle, owner)
    g((100, "AcDbSymbolTableRecord"), (100, zone), (2, name), *rest)


def end(kind):
    g((0, kind))


g((999, "made for the tests of the drawing database"))
g((0, "SECTION"), (2, "HEADER"))
g((9, "$ACADVER"), (1, "AC1032"), (9, "$DWGCODEPAGE"), (3, "ANSI_1252"), (9, "$HANDSEED"), (5, "200"))
g((9, "$INSBASE"), *point(10, "0.0", "0.0", "0.0"), (9, "$TILEMODE"), (70, "     1"))
g((9, "$CLAYER"), (8, "WALLS"), (9, "$TEXTSTYLE"), (7, "Standard"), (9, "$TDCREATE"), (40, "2459580.5"))
end("ENDSEC")
g((0, "SECTION"), (2, "CLASSES"), (0, "CLASS"), (1, "FIELD"), (2, "AcDbField"), (3, "drawing"), (90, 1152), (91, 3), (280, 0), (281, 0))
end("ENDSEC")

g((0, "SECTION"), (2, "TABLES"))
table("LTYPE", "5", 1)
record("LTYPE", "16", "5", "AcDbLinetypeTableRecord", "Continuous", (70, 0), (3, "Solid line"), (72, 65), (73, 0), (40, "0.0"))
end("ENDTAB")
table("LAYER", "2", 2)
record("LAYER", "10", "2", "AcDbLayerTableRecord", "0", (70, 0), (62, 7), (6, "Continuous"), (370, -3))
record("LAYER", "11", "2", "AcDbLayerTableRecord", "WALLS", (70, 0), (62, "   -3"), (6, "Continuous"), (290, 1), (370, 25))
end("ENDTAB")
table("STYLE", "3", 1)
record("STYLE", "12", "3", "AcDbTextStyleTableRecord", "Standard", (70, 0), (40, 0), (41, "1.0"), (50, "15.0"), (71, 0), (42, "2.5"), (3, "txt"), (4, ""))
end("ENDTAB")
table("APPID", "9", 1)
record("APPID", "13", "9", "AcDbRegAppTableRecord", "SURVEY", (70, 0))
end("ENDTAB")
table("DIMSTYLE", "A", 1)
record("DIMSTYLE", "27", "A", "AcDbDimStyleTableRecord", "Standard", (70, 0), (40, "1.0"))
end("ENDTAB")
table("BLOCK_RECORD", "1", 4)
record("BLOCK_RECORD", "1F", "1", "AcDbBlockTableRecord", "*Model_Space", (340, "22"), (70, 0), (280, 1), (281, 0))
record("BLOCK_RECORD", "1B", "1", "AcDbBlockTableRecord", "*Paper_Space", (340, "1E"), (70, 0), (280, 1), (281, 0))
head("BLOCK_RECORD", "30", "1", (102, "{BLKREFS"), (331, "50"), (331, "5A"), (102, "}"))
g((100, "AcDbSymbolTableRecord"), (100, "AcDbBlockTableRecord"), (2, "DOOR"), (340, 0), (70, 0), (280, 1), (281, 0))
record("BLOCK_RECORD", "31", "1", "AcDbBlockTableRecord", "FRAME", (340, 0), (70, 0), (280, 1), (281, 0))
end("ENDTAB")
end("ENDSEC")


def block(name, record_handle, begin, finish, base="0.0"):
    head("BLOCK", begin, record_handle)
    g((100, "AcDbEntity"), (8, "0"), (100, "AcDbBlockBegin"), (2, name), (70, 2), *point(10, base, "0.0", "0.0"), (3, name), (1, ""))
    yield
    head("ENDBLK", finish, record_handle)
    g((100, "AcDbEntity"), (8, "0"), (100, "AcDbBlockEnd"))


g((0, "SECTION"), (2, "BLOCKS"))
for _ in block("*Model_Space", "1F", "20", "21"):
    pass
for _ in block("*Paper_Space", "1B", "1C", "1D"):
    pass
for _ in block("DOOR", "30", "32", "33", "1.0"):
    entity("LINE", "34", "30", "0", (100, "AcDbLine"), *point(10, "0.", "0", "0.0"), *point(11, "10.000000000000001", " 0.0", "0.0"))
    entity("ARC", "35", "30", "0", (100, "AcDbCircle"), *point(10, "0.0", "0.0", "0.0"), (40, "10.0"), (100, "AcDbArc"), (50, "0.0"), (51, "89.999999999999986"))
    for handle, tag, prompt, flags in (("36", "WIDTH", "Width of the door", 0), ("37", "MAKER", "", 1), ("38", "NORM", "", 2)):
        entity("ATTDEF", handle, "30", "0", (100, "AcDbText"), *point(10, "1.0", "2.0", "0.0"), (40, "2.5"), (1, "?"), (50, "10.0"), (72, 1), *point(11, "3.0", "2.0", "0.0"),
               (100, "AcDbAttributeDefinition"), (280, 0), (3, prompt), (2, tag), (70, flags), (74, 2), (280, 1))
    entity("ATTDEF", "39", "30", "0", (100, "AcDbText"), *point(10, "1.0", "2.0", "0.0"), (40, "2.5"), (1, "first"),
           (100, "AcDbAttributeDefinition"), (280, 0), (3, "Notes?"), (2, "NOTES"), (70, 0), (280, 1), (71, 4), (72, 0), *point(11, "1.0", "2.0", "0.0"),
           (101, "Embedded Object"), *point(10, "1.0", "2.0", "0.0"), (40, "2.5"), (41, "20.0"), (46, "0.0"), (71, 1), (72, 5), (3, "first\\P" + "x" * 243), (1, "tail"),
           (7, "Standard"), *point(210, "0.0", "0.0", "1.0"), *point(11, "1.0", "0.0", "0.0"), (42, "30.0"), (43, "5.0"), (73, 1), (44, "1.0"))
for _ in block("FRAME", "31", "3A", "3B"):
    entity("INSERT", "3C", "31", "0", (100, "AcDbBlockReference"), (2, "DOOR"), *point(10, "5.0", "5.0", "0.0"))
end("ENDSEC")

g((0, "SECTION"), (2, "ENTITIES"))
entity("INSERT", "50", "1F", "WALLS", (62, "     1"), (100, "AcDbBlockReference"), (66, 1), (2, "door"), *point(10, "100.0", "50.0", "0.0"),
       (41, "2.0"), (42, "2.0"), (43, "2.0"), (50, "30.0"), control=((102, "{VENDOR_DATA"), (70, 7), (1, "keep me"), (102, "}"), (102, "{ACAD_XDICTIONARY"), (360, "90"), (102, "}")))
g((1001, "SURVEY"), (1000, "measured \\U+2205 12"), (1040, "12.50"), (1010, "1.0"), (1020, "2.0"), (1030, "3.0"), (1070, 4), (1005, "34"))
for handle, tag, value in (("51", "WIDTH", "90"), ("52", "MAKER", "M\u00fcller & S\u00f6hne ^J \u65e5\u672c")):
    entity("ATTRIB", handle, "50", "WALLS", (100, "AcDbText"), *point(10, "101.0", "52.0", "0.0"), (40, "5.0"), (1, value), (50, "40.0"), (7, "STANDARD"), (72, 1), *point(11, "103.0", "52.0", "0.0"),
           (100, "AcDbAttribute"), (280, 0), (2, tag), (70, 0), (74, 2), (280, 1))
g((0, "SEQEND"), (5, "54"), (330, "50"), (100, "AcDbEntity"), (8, "WALLS"))
entity("INSERT", "5A", "1F", "0", (100, "AcDbMInsertBlock"), (2, "DOOR"), *point(10, "0.0", "0.0", "0.0"), (70, 3), (71, 2), (44, "40.0"), (45, "60.0"))
entity("TEXT", "60", "1F", "0", (420, 16711680), (440, 33554559), (100, "AcDbText"), *point(10, "0.0", "0.0", "0.0"), (40, "2.5"), (1, "plain %%d"), (100, "AcDbText"), (73, 2))
entity("MTEXT", "61", "1F", "0", (100, "AcDbMText"), *point(10, "0.0", "0.0", "0.0"), (40, "2.5"), (41, "0.0"), (71, 5), (72, 5), (3, "a" * 250), (3, "b" * 250), (1, "c"),
       (7, "Standard"), *point(11, "1.0", "0.0", "0.0"), (73, 1), (44, "1.0"))
entity("RAY", "62", "1F", "0", (100, "AcDbRay"), *point(10, "0.0", "0.0", "0.0"), *point(11, "0.6", "0.8", "0.0"))
entity("XLINE", "63", "1F", "0", (100, "AcDbXline"), *point(10, "0.0", "0.0", "0.0"), *point(11, "1.0", "0.0", "0.0"))
entity("POINT", "64", "1F", "0", (100, "AcDbPoint"), *point(10, "0.0", "0.0", "0.0"))
entity("CIRCLE", "65", "1F", "0", (100, "AcDbCircle"), (39, "1.0"), *point(10, "0.0", "0.0", "0.0"), (40, "1.5E+01"), *point(210, "0.0", "0.0", "-1.0"))
entity("LWPOLYLINE", "66", "1F", "0", (100, "AcDbPolyline"), (90, 3), (70, 1), (43, "0.0"), (10, "0.0"), (20, "0.0"), (10, "4.0"), (20, "0.0"), (42, "0.5"), (10, "4.0"), (20, "4.0"))
entity("ELLIPSE", "68", "1F", "0", (100, "AcDbEllipse"), *point(10, "5", "5", "0"), *point(11, "3.0", "0.0", "0.0"), *point(210, "0.0", "0.0", "1.0"), (40, "0.50"), (41, "0.0"), (42, "6.283185307179586"))
entity("SPLINE", "69", "1F", "0", (100, "AcDbSpline"), *point(210, "0.0", "0.0", "1.0"), (70, 12), (71, 2), (72, 6), (73, 3), (74, 0), (42, "0.0000001"), (43, "0.0000001"),
       *((40, k) for k in ("0.0", "0.0", "0.0", "1.0", "1.0", "1.0")), *point(10, "0.0", "0.0", "0.0"), (41, "1.0"), *point(10, "1.0", "2.0", "0.0"), (41, "2.0"), *point(10, "3.0", "0.0", "0.0"), (41, "1.0"))
entity("WIPEOUT", "6E", "1F", "0", (100, "AcDbWipeout"), (90, 0), *point(10, "0.0", "0.0", "0.0"), *point(11, "2.0", "0.0", "0.0"), *point(12, "0.0", "2.0", "0.0"), (13, "1.0"), (23, "1.0"),
       (340, 0), (70, 7), (280, 1), (281, 50), (282, 50), (283, 0), (290, 0), (360, 0), (71, 1), (91, 2), (14, "-0.5"), (24, "-0.5"), (14, "0.5"), (24, "0.5"))
entity("SOLID3000", "67", "1F", "0", (100, "AcDbVendorSolid"), *point(10, "0.0", "0.0", "0.0"), (310, "00FF"), (290, 1), (1, "carried"))
entity("VIEWPORT", "70", "1B", "0", (67, 1), (100, "AcDbViewport"), *point(10, "0.0", "0.0", "0.0"), (40, "400.0"), (41, "300.0"), (68, 1), (69, 1), (12, "0.0"), (22, "0.0"), (45, "300.0"))
entity("VIEWPORT", "71", "1B", "0", (67, 1), (100, "AcDbViewport"), *point(10, "50.0", "50.0", "0.0"), (40, "100.0"), (41, "80.0"), (68, 2), (69, 2), (12, "5.0"), (22, "5.0"),
       *point(16, "0.0", "0.0", "1.0"), *point(17, "0.0", "0.0", "0.0"), (45, "40.0"), (51, "0.0"))
entity("LINE", "72", "1B", "0", (67, 1), (100, "AcDbLine"), *point(10, "0.0", "0.0", "0.0"), *point(11, "1.0", "1.0", "0.0"), control=((102, "{ACAD_REACTORS"), (330, "A0"), (102, "}")))
end("ENDSEC")

g((0, "SECTION"), (2, "OBJECTS"))


def dictionary(handle, owner, *entries, hard=0):
    head("DICTIONARY", handle, owner)
    g((100, "AcDbDictionary"), *([(280, 1)] if hard else []), (281, 1))
    for name, target in entries:
        g((3, name), (360 if hard else 350, target))


dictionary("C", "0", ("ACAD_GROUP", "D"), ("ACAD_LAYOUT", "1A"), ("ACAD_FIELDLIST", "B0"), ("ACAD_WIPEOUT_VARS", "B3"))
dictionary("D", "C", ("G1", "A0"))
dictionary("1A", "C", ("Layout1", "1E"), ("Model", "22"))
for handle, name, order, block_handle in (("1E", "Layout1", 1, "1B"), ("22", "Model", 0, "1F")):
    head("LAYOUT", handle, "1A", (102, "{ACAD_REACTORS"), (330, "1A"), (102, "}"))
    g((100, "AcDbPlotSettings"), (1, ""), (40, "7.5"), (70, 688), (100, "AcDbLayout"), (1, name), (70, 1), (71, order), (10, "0.0"), (20, "0.0"), (11, "12.0"), (21, "9.0"), (330, block_handle))
head("GROUP", "A0", "D")
g((100, "AcDbGroup"), (300, "a group"), (70, 0), (71, 1), (340, "72"), (340, "65"))
dictionary("90", "50", ("ACAD_FIELD", "91"), hard=1)
dictionary("91", "90", ("TEXT", "92"), hard=1)
head("FIELD", "92", "91", (102, "{ACAD_REACTORS"), (330, "91"), (102, "}"))
g((100, "AcDbField"), (1, "_text"), (2, "made by %<\\_FldIdx 0>%"), (90, 1), (360, "93"), (97, 0), (91, 63), (92, 0), (94, 41), (95, 2), (96, 0), (300, ""), (93, 0),
  (7, "ACFD_FIELD_VALUE"), (93, 0), (90, 4), (1, "made by ----"), (94, 0), (300, ""), (302, ""), (304, "ACVALUE_END"), (301, "made by ----"), (98, 12))
head("FIELD", "93", "92")
g((100, "AcDbField"), (1, "AcVar"), (2, "\\AcVar Author"), (90, 0), (97, 0), (91, 63), (92, 0), (94, 9), (95, 2), (96, 0), (300, ""), (93, 0),
  (7, "ACFD_FIELD_VALUE"), (93, 0), (90, 4), (1, "----"), (94, 0), (300, ""), (302, ""), (304, "ACVALUE_END"), (301, "----"), (98, 4))
head("FIELDLIST", "B0", "C")
g((100, "AcDbIdSet"), (90, 2), (330, "92"), (330, "93"), (100, "AcDbFieldList"))
head("SORTENTSTABLE", "B1", "90")
g((100, "AcDbSortentsTable"), (330, "1F"), (331, "65"), (5, "66"), (331, "66"), (5, "65"))
head("XRECORD", "B2", "90")
g((100, "AcDbXrecord"), (280, 1), (1, "free"), (10, "1.0"), (20, "2.0"), (30, "3.0"), (340, "65"), (5, "nothing"))
head("WIPEOUTVARIABLES", "B3", "C", (102, "{ACAD_REACTORS"), (330, "C"), (102, "}"))
g((100, "AcDbWipeoutVariables"), (70, "     0"))
end("ENDSEC")
end("EOF")
OUT.append("a line after the end\n")

import sys

sys.stdout.reconfigure(encoding="utf-8", newline="\n")
sys.stdout.write("".join(OUT))
