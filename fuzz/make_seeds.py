#!/usr/bin/env python3
"""make_seeds.py

Writes the seed drawings into seeds/drawing beside this file. They are as small as drawings can be that still have one of
everything the database knows by class, in every spelling: versions with and without handles and subclass markers,
either line end, blanks around codes, binary with either code width; and some that are faulty in a known way.

The other folders of seeds hold texts typed by hand.
"""

import pathlib
import struct

FOLDER = pathlib.Path(__file__).resolve().parent / "seeds" / "drawing"


def point(code, x, y, z=0.0):
    return [(code, x), (code + 10, y), (code + 20, z)]


def section(name, *groups):
    return [(0, "SECTION"), (2, name), *groups, (0, "ENDSEC")]


def header(version, *variables):
    return section("HEADER", (9, "$ACADVER"), (1, version), *variables)


class Drawing:
    """Groups of a drawing of version 13 or later; handles are given out in order from 0x100."""

    def __init__(self):
        self.next = 0x100

    def handle(self):
        self.next += 1
        return f"{self.next:X}"

    def record(self, kind, owner, *groups, handle=None, control=()):
        return [(0, kind), (5, handle or self.handle()), *control, (330, owner), *groups]

    def entity(self, kind, owner, *groups, handle=None, layer="0", control=()):
        return self.record(kind, owner, (100, "AcDbEntity"), (8, layer), *groups, handle=handle, control=control)

    def table(self, name, handle, *records):
        groups = [(0, "TABLE"), (2, name), (5, handle), (330, "0"), (100, "AcDbSymbolTable"), (70, len(records))]
        return groups + [g for record in records for g in record] + [(0, "ENDTAB")]

    def table_record(self, kind, table, zone, name, *groups, handle=None):
        return self.record(kind, table, (100, "AcDbSymbolTableRecord"), (100, zone), (2, name), *groups, handle=handle)

    def block(self, name, record, *entities):
        begin = self.entity("BLOCK", record, (100, "AcDbBlockBegin"), (2, name), (70, 2), *point(10, 0.0, 0.0), (3, name), (1, ""))
        end = self.entity("ENDBLK", record, (100, "AcDbBlockEnd"))
        return begin + [g for entity in entities for g in entity] + end


SPACES = (("*Model_Space", "1F"), ("*Paper_Space", "1B"))


def spaces(d):
    return [g for name, handle in SPACES for g in d.block(name, handle)]


def block_records(d, *names):
    """The two spaces, then blocks with the handles 30, 31, ..."""
    pairs = [*SPACES, *((name, f"{0x30 + i:X}") for i, name in enumerate(names))]
    return d.table("BLOCK_RECORD", "1", *(
        d.table_record("BLOCK_RECORD", "1", "AcDbBlockTableRecord", name, (70, 0), handle=handle) for name, handle in pairs))


def text(code, value, x, y, *groups):
    return [(100, "AcDbText"), *point(10, x, y), (40, 2.5), (code, value), *groups]


def attributes_2018():
    """Attributes and definitions that match and do not match, a field, extended data, multi-line ones."""
    d = Drawing()
    embedded = [(101, "Embedded Object"), *point(10, 1.0, 2.0), (40, 2.5), (41, 20.0), (71, 1), (72, 5), (1, "first\\Psecond"),
                (7, "Standard"), *point(210, 0.0, 0.0, 1.0), *point(11, 1.0, 0.0), (42, 30.0), (43, 5.0), (73, 1), (44, 1.0)]

    def definition(tag, *groups, flags=0):
        return d.entity("ATTDEF", "30", *text(1, "?", 1.0, 2.0, *groups), (100, "AcDbAttributeDefinition"), (280, 0),
                        (3, f"{tag}?"), (2, tag), (70, flags), (280, 1))

    def attribute(owner, tag, value, *groups, handle=None, control=()):
        return d.entity("ATTRIB", owner, *text(1, value, 11.0, 2.0, *groups), (100, "AcDbAttribute"), (280, 0), (2, tag),
                        (70, 0), (280, 1), handle=handle, control=control)

    door = d.block("DOOR", "30", d.entity("LINE", "30", (100, "AcDbLine"), *point(10, 0.0, 0.0), *point(11, 10.0, 0.0)),
                   definition("WIDTH", (72, 1), *point(11, 3.0, 2.0)), definition("NOTE"), definition("NOTE"),
                   definition("NORM", flags=2),
                   definition("LONG") + [(71, 4), (72, 0), *point(11, 1.0, 2.0)] + embedded)
    house = d.block("HOUSE", "31", d.entity("INSERT", "31", (100, "AcDbBlockReference"), (2, "DOOR"), *point(10, 5.0, 5.0)))
    insert = d.entity("INSERT", "1F", (100, "AcDbBlockReference"), (66, 1), (2, "door"), *point(10, 10.0, 0.0), (41, 2.0),
                      (42, 2.0), (43, 2.0), (50, 30.0), (1001, "SURVEY"), (1000, "measured"), (1040, 12.5), (1070, 4),
                      handle="50")
    field_control = [(102, "{ACAD_XDICTIONARY"), (360, "90"), (102, "}")]
    attributes = [attribute("50", "NOTE", "made 7", handle="51", control=field_control), attribute("50", "OLD", "gone"),
                  attribute("50", "LONG", "first") + [(71, 2), (72, 0), *point(11, 1.0, 2.0)] + embedded]
    value = [(93, 0), (90, 4), (1, "7"), (94, 0), (300, ""), (302, ""), (304, "ACVALUE_END")]

    def field(handle, owner, evaluator, code, *children):
        return d.record("FIELD", owner, (100, "AcDbField"), (1, evaluator), (2, code), (90, len(children)),
                        *((360, child) for child in children), (97, 0), (91, 63), (92, 0), (94, 9), (95, 2), (96, 0),
                        (300, ""), (93, 0), (7, "ACFD_FIELD_VALUE"), *value, (301, "7"), (98, 1), handle=handle)

    def dictionary(handle, owner, *entries):
        return d.record("DICTIONARY", owner, (100, "AcDbDictionary"), (281, 1),
                        *(g for name, target in entries for g in ((3, name), (350, target))), handle=handle)

    return [*header("AC1032", (9, "$HANDSEED"), (5, "400"), (9, "$CLAYER"), (8, "0")),
            *section("TABLES",
                     *d.table("LAYER", "2", d.table_record("LAYER", "2", "AcDbLayerTableRecord", "0", (70, 0), (62, 7))),
                     *d.table("STYLE", "3", d.table_record("STYLE", "3", "AcDbTextStyleTableRecord", "Standard", (70, 0),
                                                           (40, 0.0), (41, 1.0), (3, "txt"))),
                     *d.table("APPID", "9", d.table_record("APPID", "9", "AcDbRegAppTableRecord", "SURVEY", (70, 0))),
                     *block_records(d, "DOOR", "HOUSE")),
            *section("BLOCKS", *spaces(d), *door, *house),
            *section("ENTITIES", *insert, *(g for a in attributes for g in a),
                     *d.record("SEQEND", "50", (100, "AcDbEntity"), (8, "0")),
                     *d.entity("INSERT", "1F", (100, "AcDbMInsertBlock"), (2, "HOUSE"), *point(10, 0.0, 0.0), (70, 2), (71, 2),
                               (44, 9.0), (45, 9.0))),
            *section("OBJECTS", *dictionary("C", "0", ("ACAD_FIELDLIST", "B0")), *dictionary("90", "51", ("ACAD_FIELD", "91")),
                     *dictionary("91", "90", ("TEXT", "92")), *field("92", "91", "_text", "made %<\\_FldIdx 0>%", "93"),
                     *field("93", "92", "AcExpr", "\\AcExpr (3+4) \\f \"%lu2\""),
                     *d.record("FIELDLIST", "C", (100, "AcDbIdSet"), (90, 2), (330, "92"), (330, "93"), (100, "AcDbFieldList"),
                               handle="B0")),
            (0, "EOF")]


def entities_2000():
    """One of every other kind, layouts, an old code page."""
    d = Drawing()
    e = lambda kind, zone, *groups, **more: d.entity(kind, "1F", (100, zone), *groups, **more)
    entities = [
        e("TEXT", "AcDbText", *point(10, 0.0, 0.0), (40, 2.5), (1, "%%uplain%%u \\U+2205 ^J"), (72, 3), *point(11, 9.0, 1.0)),
        e("MTEXT", "AcDbMText", *point(10, 0.0, 0.0), (40, 2.5), (41, 20.0), (71, 5), (3, "{\\fArial|b1;long " * 4), (1, "\\S1/2;}")),
        e("RAY", "AcDbRay", *point(10, 0.0, 0.0), *point(11, 0.6, 0.8)),
        e("XLINE", "AcDbXline", *point(10, 0.0, 0.0), *point(11, 1.0, 0.0)),
        e("POINT", "AcDbPoint", *point(10, 0.0, 0.0)),
        e("CIRCLE", "AcDbCircle", *point(10, 0.0, 0.0), (40, 15.0), *point(210, 0.0, 0.0, -1.0)),
        e("ARC", "AcDbCircle", *point(10, 0.0, 0.0), (40, 15.0), (100, "AcDbArc"), (50, 0.0), (51, 90.0), handle="65"),
        e("LWPOLYLINE", "AcDbPolyline", (90, 2), (70, 1), (10, 0.0), (20, 0.0), (42, 0.5), (10, 4.0), (20, 0.0)),
        e("ELLIPSE", "AcDbEllipse", *point(10, 5.0, 5.0), *point(11, 3.0, 0.0), (40, 0.5), (41, 0.0), (42, 5.0)),
        e("SPLINE", "AcDbSpline", (70, 12), (71, 2), (72, 6), (73, 3), (74, 0), *((40, k) for k in (0.0, 0.0, 0.0, 1.0, 1.0, 1.0)),
          *point(10, 0.0, 0.0), (41, 1.0), *point(10, 1.0, 2.0), (41, 2.0), *point(10, 3.0, 0.0), (41, 1.0)),
        e("SPLINE", "AcDbSpline", (70, 8), (71, 3), (74, 3), *point(12, 1.0, 0.0), *point(11, 0.0, 0.0), *point(11, 1.0, 2.0), *point(11, 3.0, 0.0)),
        e("WIPEOUT", "AcDbWipeout", (90, 0), *point(10, 0.0, 0.0), *point(11, 2.0, 0.0), *point(12, 0.0, 2.0), (13, 1.0), (23, 1.0), (340, 0), (70, 7),
          (280, 1), (281, 50), (282, 50), (283, 0), (360, 0), (71, 1), (91, 2), (14, -0.5), (24, -0.5), (14, 0.5), (24, 0.5)),
        e("SOLID3000", "AcDbVendorSolid", (310, "00FF"), (290, 1), (1, "carried")),
        d.entity("VIEWPORT", "1B", (67, 1), (100, "AcDbViewport"), *point(10, 50.0, 50.0), (40, 100.0), (41, 80.0), (68, 2),
                 (69, 2), (12, 5.0), (22, 5.0), *point(16, 0.0, 0.0, 1.0), (45, 40.0))]

    def layout(handle, name, order, block):
        return d.record("LAYOUT", "1A", (100, "AcDbPlotSettings"), (1, ""), (70, 688), (100, "AcDbLayout"), (1, name), (70, 1),
                        (71, order), (330, block), handle=handle)

    def dictionary(handle, owner, *entries):
        return d.record("DICTIONARY", owner, (100, "AcDbDictionary"), (281, 1),
                        *(g for name, target in entries for g in ((3, name), (350, target))), handle=handle)

    return [*header("AC1015", (9, "$DWGCODEPAGE"), (3, "ANSI_1252"), (9, "$HANDSEED"), (5, "20")),
            *section("TABLES", *block_records(d)), *section("BLOCKS", *spaces(d)),
            *section("ENTITIES", *(g for entity in entities for g in entity)),
            *section("OBJECTS", *dictionary("C", "0", ("ACAD_LAYOUT", "1A"), ("ACAD_GROUP", "D")),
                     *dictionary("1A", "C", ("Model", "22"), ("Layout1", "1E")), *layout("22", "Model", 0, "1F"),
                     *layout("1E", "Layout1", 1, "1B"), *dictionary("D", "C", ("G", "A0")),
                     *d.record("GROUP", "D", (100, "AcDbGroup"), (300, "a group"), (340, "65"), handle="A0"),
                     *d.record("SORTENTSTABLE", "D", (100, "AcDbSortentsTable"), (330, "1F"), (331, "65"), (5, "65"))),
            (0, "EOF")]


def attributes_r12():
    """No handles, no markers, no block records; an old polyline."""
    entity = lambda kind, *groups: [(0, kind), (8, "0"), *groups]
    return [*header("AC1009", (9, "$DWGCODEPAGE"), (3, "dos850")),
            *section("TABLES", (0, "TABLE"), (2, "LAYER"), (70, 1), (0, "LAYER"), (2, "0"), (70, 0), (62, 7), (6, "CONTINUOUS"),
                     (0, "ENDTAB")),
            *section("BLOCKS", *entity("BLOCK", (2, "DOOR"), (70, 2), *point(10, 1.0, 0.0), (3, "DOOR")),
                     *entity("ATTDEF", *point(10, 0.0, 0.0), (40, 1.0), (1, "?"), (3, "Width?"), (2, "WIDTH"), (70, 0)),
                     *entity("ATTDEF", *point(10, 0.0, 2.0), (40, 1.0), (1, "?"), (3, ""), (2, "NEW"), (70, 8)),
                     *entity("ENDBLK")),
            *section("ENTITIES", *entity("INSERT", (66, 1), (2, "DOOR"), *point(10, 5.0, 5.0), (41, -1.0), (50, 90.0)),
                     *entity("ATTRIB", *point(10, 5.0, 5.0), (40, 1.0), (1, "90"), (2, "WIDTH"), (70, 0)), *entity("SEQEND"),
                     *entity("POLYLINE", (66, 1), (70, 1)), *entity("VERTEX", *point(10, 0.0, 0.0), (42, 1.0)),
                     *entity("VERTEX", *point(10, 2.0, 0.0)), *entity("SEQEND"),
                     *entity("LINE", *point(10, 0.0, 0.0), *point(11, 1.0, 1.0)),
                     *entity("TEXT", *point(10, 0.0, 0.0), (40, 1.0), (1, "text"), (72, 2), *point(11, 4.0, 0.0))),
            (0, "EOF")]


def faulty():
    """Duplicate, empty and missing handles, blocks within each other, an unknown code page, numbers that are none, sections
    that do not end, references of what is not there."""
    d = Drawing()
    insert = lambda owner, name, **more: d.entity("INSERT", owner, (100, "AcDbBlockReference"), (2, name), *point(10, 1.0, 1.0), **more)
    groups = [*header("AC1018", (9, "$DWGCODEPAGE"), (3, "KLINGON"), (9, "$HANDSEED"), (5, "2")),
              *section("TABLES", *block_records(d, "A", "B")),
              *section("BLOCKS", *spaces(d), *d.block("A", "30", insert("30", "B")), *d.block("B", "31", insert("31", "A"))),
              (0, "SECTION"), (2, "ENTITIES"), *insert("1F", "A", handle="77"), *insert("1F", "nowhere", handle="77"),
              (0, "CIRCLE"), (5, ""), (330, "FFFFFFFFFFFFFFFF"), (8, "0"), (40, "1O.5"), (41, "1e999"), (62, "99999999999"),
              (0, "LWPOLYLINE"), (90, "-5"), (10, 1.0), (0, "ATTRIB"), (2, "T"), (0, "SEQEND"), (0, "VERTEX"),
              *section("OBJECTS", (0, "DICTIONARY"), (5, "C"), (102, "{"), (3, "TWICE"), (350, "C"), (3, "TWICE"), (360, "C")),
              (0, "EOF")]
    return groups


def ascii_bytes(groups, line_end="\n", width=3, comments=False):
    lines = []
    for code, value in groups:
        if comments and code == 8:
            lines += [f"{999:>{width}}", "a comment"]
        lines += [f"{code:>{width}}", str(value)]
    return (line_end.join(lines) + line_end).encode("utf-8")


def binary_bytes(groups, wide):
    out = b"DRAWING Binary DXF\r\n\x1a\0"
    for code, value in groups:
        out += struct.pack("<h", code) if wide else bytes([code]) if code < 255 else b"\xff" + struct.pack("<h", code)
        if 10 <= code < 60 or 110 <= code < 150 or 210 <= code < 240 or 1010 <= code < 1060:
            out += struct.pack("<d", value)
        elif 60 <= code < 80 or 170 <= code < 180 or 270 <= code < 290 or 370 <= code < 390 or 1060 <= code < 1071:
            out += struct.pack("<h", value)
        elif 90 <= code < 100 or 420 <= code < 430:
            out += struct.pack("<i", value)
        elif 290 <= code < 300:
            out += bytes([value])
        elif 310 <= code < 320:
            chunk = bytes.fromhex(value)
            out += bytes([len(chunk)]) + chunk
        else:
            out += str(value).encode("utf-8") + b"\0"
    return out


def main():
    FOLDER.mkdir(parents=True, exist_ok=True)
    seeds = {
        "attributes_2018.dxf": ascii_bytes(attributes_2018()),
        "attributes_r12.dxf": ascii_bytes(attributes_r12(), "\r\n"),
        "attributes_r12_binary.dxf": binary_bytes(attributes_r12(), wide=False),
        "entities_2000.dxf": ascii_bytes(entities_2000(), width=6, comments=True),
        "entities_2000_binary.dxf": binary_bytes(entities_2000(), wide=True),
        "faulty.dxf": ascii_bytes(faulty()),
        "cut_short.dxf": ascii_bytes(attributes_2018())[:1000],
    }
    for name, content in seeds.items():
        (FOLDER / name).write_bytes(content)


main()
